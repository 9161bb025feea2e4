#include "tqx/framing/BlockFramer.h"

#include "korcg_load.h"
#include "tqx/framing/SyncSearch.h"

#include <algorithm>

namespace tqx
{

BlockFramer::Listener::~Listener() = default;

void BlockFramer::Listener::onDroppedPiece(uint64_t, const uint8_t*, size_t) {}

BlockFramer::BlockFramer(Listener* listener) : m_listener(listener) {}

BlockFramer::~BlockFramer() = default;

void BlockFramer::append(const uint8_t* bytes, size_t size)
{
    if (size == 0) {
        return;
    }
    m_ended = false;
    if (available() != 0 || m_unreported != 0) {
        store(bytes, size);
        search();
        return;
    }
    // Leading junk is not worth a copy.
    const size_t junk = findSync(bytes, size);
    const uint64_t start = m_offset;
    m_offset += junk;
    m_unreported += junk;
    m_handedOver = junk;
    store(bytes + junk, size - junk);
    if (junk != 0 && m_listener != nullptr) {
        m_listener->onDroppedPiece(start, bytes, junk);
    }
    search();
}

void BlockFramer::flush()
{
    m_ended = true;
    search();
}

BlockFramer::Block BlockFramer::block() const
{
    if (!hasBlock()) {
        return {nullptr, 0, m_offset};
    }
    return {head(), m_blockSize, m_offset};
}

void BlockFramer::takeBlock()
{
    if (!hasBlock()) {
        return;
    }
    m_head += m_blockSize;
    m_offset += m_blockSize;
    m_blockSize = 0;
    search();
}

BlockFramer::Candidate BlockFramer::waiting() const
{
    if (hasBlock() || available() < BlockHeader::headerSize) {
        return {nullptr, 0, 0, m_offset};
    }
    return {head(), available(), korcg_load_u16(head() + BlockHeader::lengthAt), m_offset};
}

bool BlockFramer::passWaiting()
{
    const Candidate candidate = waiting();
    if (candidate.data == nullptr ||
        !m_inner.find(candidate.data + BlockHeader::syncSize,
                      candidate.size - BlockHeader::syncSize, m_offset + BlockHeader::syncSize)) {
        return false;
    }
    drop(BlockHeader::syncSize);
    search();
    return true;
}

size_t BlockFramer::bytesLeft() const
{
    return available() + static_cast<size_t>(m_unreported);
}

// The listener may append or take during a report, so nothing is kept across one.
void BlockFramer::search()
{
    while (!hasBlock() && decideCandidate()) {
    }
    reportDropped();
}

// Moves to the next candidate and decides about it. False when there is nothing left to decide: a
// block is found or more bytes are needed.
bool BlockFramer::decideCandidate()
{
    drop(findSync(head(), available()));
    if (available() < BlockHeader::headerSize) {
        return giveUpCandidate();
    }
    const size_t length = korcg_load_u16(head() + BlockHeader::lengthAt);
    const uint64_t candidate = m_offset;
    if (length < BlockHeader::headerSize) {
        drop(BlockHeader::syncSize);
        if (m_listener != nullptr) {
            m_listener->onInvalidLength(candidate);
        }
        return true;
    }
    if (available() < length) {
        return giveUpCandidate();
    }
    if (m_checksum.isIntact(head(), length, m_offset)) {
        m_blockSize = length;
        return false;
    }
    drop(BlockHeader::syncSize);
    if (m_listener != nullptr) {
        m_listener->onChecksumFailed(candidate);
    }
    return true;
}

bool BlockFramer::giveUpCandidate()
{
    if (!m_ended || available() == 0) {
        return false;
    }
    drop(std::min(BlockHeader::syncSize, available()));
    return true;
}

void BlockFramer::reportDropped()
{
    const uint64_t count = m_unreported;
    const size_t inBuffer = droppedInBuffer();
    const uint64_t end = m_offset;
    m_unreported = 0;
    m_handedOver = 0;
    if (count == 0 || m_listener == nullptr) {
        return;
    }
    if (inBuffer != 0) {
        m_listener->onDroppedPiece(end - inBuffer, head() - inBuffer, inBuffer);
    }
    m_listener->onBytesDropped(end - count, count);
}

// Consumed bytes are removed when room is needed and they are the larger part, so that every byte
// is moved at most once on average. Bytes that are yet to be reported are not consumed.
void BlockFramer::store(const uint8_t* bytes, size_t size)
{
    constexpr size_t leastCapacity = 16384;
    const size_t consumed = m_head - droppedInBuffer();
    const size_t kept = m_buffer.size() - consumed;
    if (m_buffer.capacity() - m_buffer.size() < size && consumed >= kept) {
        std::copy(m_buffer.begin() + static_cast<std::ptrdiff_t>(consumed), m_buffer.end(),
                  m_buffer.begin());
        m_buffer.resize(kept);
        m_buffer.reserve(leastCapacity);
        m_head -= consumed;
    }
    m_buffer.insert(m_buffer.end(), bytes, bytes + size);
}

} // namespace tqx
