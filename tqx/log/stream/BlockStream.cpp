#include "tqx/log/stream/BlockStream.h"

#include "korcg_load.h"
#include "tqx/log/stream/HeaderCheck.h"

namespace tqx
{

using Kor::MessageApi::TQX_noTOW;

namespace
{

constexpr size_t pieceSize = 1 << 18;

} // namespace

BlockStream::BlockStream(ByteSource& bytes, StreamListener* hears)
    : m_source(bytes), m_listener(hears), m_framer(this), m_scanner(*this), m_piece(pieceSize)
{
}

BlockStream::~BlockStream() = default;

void BlockStream::setCounts(const StreamCounts& counts)
{
    const uint64_t undecodable = m_counts.undecodable;
    m_counts = counts;
    m_counts.undecodable = undecodable;
}

bool BlockStream::next(Block& block)
{
    m_framer.takeBlock();
    while (!m_framer.hasBlock()) {
        if (m_ended) {
            if (!m_source.isInterrupted())
                m_scanner.end();
            m_gap.isCut = m_isCut;
            closeGap();
            return false;
        }
        readOn();
    }
    m_scanner.end();
    closeGap();
    ++m_counts.blocks;
    const BlockFramer::Block found = m_framer.block();
    const ByteSource::Place place = m_source.placeOf(found.offset);
    if (m_name != place.file)
        m_name = place.file;
    block = {found.data, static_cast<uint16_t>(found.size), place.offset};
    WeekContext week = {m_weekCounter, m_lastTow};
    m_startsWeek = week.follow(block, m_schema);
    m_weekCounter = week.weekCounter;
    m_lastTow = week.lastTow;
    return true;
}

// Unless a week begins with the block, the last TOW decides nothing and must not begin one;
// otherwise it must be so late that the week begins.
WeekContext BlockStream::getContext() const
{
    if (!m_startsWeek)
        return {m_weekCounter, 0};
    return {static_cast<uint8_t>(m_weekCounter - 1), TQX_noTOW};
}

void BlockStream::setContext(const WeekContext& context)
{
    m_startsWeek = context.lastTow == TQX_noTOW;
    m_weekCounter = static_cast<uint8_t>(context.weekCounter + (m_startsWeek ? 1 : 0));
}

void BlockStream::reportUndecodable(const Block& block, int32_t code)
{
    ++m_counts.undecodable;
    if (m_listener)
        m_listener->onUndecodable(m_name, block, code);
}

/// Skips candidates that look false by themselves; true when a block follows.
bool BlockStream::passDoubtful()
{
    while (!m_framer.hasBlock()) {
        const BlockFramer::Candidate candidate = m_framer.waiting();
        if (candidate.data == nullptr ||
            isPlausibleHeader(korcg_load_u16(candidate.data + 4), candidate.length, m_schema) ||
            !m_framer.passWaiting())
            return false;
    }
    return true;
}

/// Skips whatever is waiting once the source has been silent; true when a block follows.
bool BlockStream::passAfterPause()
{
    if (m_framer.waiting().data == nullptr || m_source.isReady(*m_longestPause))
        return false;
    while (!m_framer.hasBlock() && m_framer.passWaiting()) {
    }
    return m_framer.hasBlock();
}

void BlockStream::readOn()
{
    if (m_longestPause && (passDoubtful() || passAfterPause()))
        return;
    const size_t size = m_source.read(m_piece.data(), m_piece.size());
    if (size != 0) {
        m_counts.bytes += size;
        m_framer.append(m_piece.data(), size);
        return;
    }
    m_ended = true;
    if (m_source.isInterrupted())
        return; // ending inside a block is not damage
    m_isCut = m_framer.bytesLeft() != 0;
    m_framer.flush();
}

void BlockStream::onChecksumFailed(uint64_t offset)
{
    m_falseBlocks.push_back({offset, false});
}

void BlockStream::onInvalidLength(uint64_t offset)
{
    m_falseBlocks.push_back({offset, true});
}

// Its bytes are what counts.
void BlockStream::onBytesDropped(uint64_t, uint64_t) {}

void BlockStream::onDroppedPiece(uint64_t offset, const uint8_t* bytes, size_t size)
{
    m_scanner.append(offset, bytes, size);
}

void BlockStream::onRecognised(const Neighbour& neighbour)
{
    closeGap();
    m_counts.neighbours[static_cast<size_t>(neighbour.kind)].add(neighbour);
    while (!m_falseBlocks.empty() &&
           m_falseBlocks.front().offset < neighbour.offset + neighbour.size)
        m_falseBlocks.pop_front();
    if (!m_listener)
        return;
    const ByteSource::Place place = m_source.placeOf(neighbour.offset);
    m_listener->onNeighbour(place.file,
                            {neighbour.kind, neighbour.data, neighbour.size, place.offset});
}

// One stretch may be reported in several pieces.
void BlockStream::onDamage(uint64_t offset, uint64_t count)
{
    m_counts.droppedBytes += count;
    if (m_gap.bytes == 0)
        m_gap.offset = offset;
    m_gap.bytes += count;
    for (; !m_falseBlocks.empty() && m_falseBlocks.front().offset < offset + count;
         m_falseBlocks.pop_front()) {
        const bool isTooShort = m_falseBlocks.front().isTooShort;
        ++(isTooShort ? m_counts.invalidLengths : m_counts.crcErrors);
        ++(isTooShort ? m_gap.invalidLengths : m_gap.crcErrors);
    }
}

void BlockStream::closeGap()
{
    if (m_gap.bytes == 0)
        return;
    if (m_listener) {
        const ByteSource::Place place = m_source.placeOf(m_gap.offset);
        m_gap.file = place.file;
        m_gap.offset = place.offset;
        m_listener->onGap(m_gap);
    }
    m_gap = StreamGap();
}

} // namespace tqx
