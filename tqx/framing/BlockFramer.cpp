#include "tqx/framing/BlockFramer.h"

#include "korcg_load.h"
#include "tqx/framing/SyncSearch.h"

#include <algorithm>

namespace tqx
{

BlockFramer::Listener::~Listener() = default;

void BlockFramer::Listener::onDroppedPiece(uint64_t, const uint8_t*, size_t) {}

BlockFramer::BlockFramer(Listener* listener) : listener_(listener) {}

BlockFramer::~BlockFramer() = default;

void BlockFramer::append(const uint8_t* bytes, size_t size)
{
    if (size == 0) {
        return;
    }
    ended_ = false;
    if (available() != 0 || unreported_ != 0) {
        store(bytes, size);
        search();
        return;
    }
    // Junk in front is not worth a copy.
    const size_t junk = findSync(bytes, size);
    const uint64_t start = offset_;
    offset_ += junk;
    unreported_ += junk;
    handedOver_ = junk;
    store(bytes + junk, size - junk);
    if (junk != 0 && listener_ != nullptr) {
        listener_->onDroppedPiece(start, bytes, junk);
    }
    search();
}

void BlockFramer::flush()
{
    ended_ = true;
    search();
}

BlockFramer::Block BlockFramer::block() const
{
    if (!hasBlock()) {
        return {nullptr, 0, offset_};
    }
    return {head(), blockSize_, offset_};
}

void BlockFramer::takeBlock()
{
    if (!hasBlock()) {
        return;
    }
    head_ += blockSize_;
    offset_ += blockSize_;
    blockSize_ = 0;
    search();
}

BlockFramer::Candidate BlockFramer::waiting() const
{
    if (hasBlock() || available() < BlockHeader::kSize) {
        return {nullptr, 0, 0, offset_};
    }
    return {head(), available(), korcg_load_u16(head() + BlockHeader::kLengthAt), offset_};
}

bool BlockFramer::passWaiting()
{
    const Candidate candidate = waiting();
    if (candidate.data == nullptr ||
        !inner_.find(candidate.data + BlockHeader::kSyncSize,
                     candidate.size - BlockHeader::kSyncSize, offset_ + BlockHeader::kSyncSize)) {
        return false;
    }
    drop(BlockHeader::kSyncSize);
    search();
    return true;
}

size_t BlockFramer::bytesLeft() const
{
    return available() + static_cast<size_t>(unreported_);
}

// The listener may append or take while it is told something, so nothing is kept across a report.
void BlockFramer::search()
{
    while (!hasBlock() && decideCandidate()) {
    }
    reportDropped();
}

// Goes to the next candidate and decides about it. False when there is nothing more to decide: a
// block is found or more bytes are needed.
bool BlockFramer::decideCandidate()
{
    drop(findSync(head(), available()));
    if (available() < BlockHeader::kSize) {
        return giveUpCandidate();
    }
    const size_t length = korcg_load_u16(head() + BlockHeader::kLengthAt);
    const uint64_t candidate = offset_;
    if (length < BlockHeader::kSize) {
        drop(BlockHeader::kSyncSize);
        if (listener_ != nullptr) {
            listener_->onInvalidLength(candidate);
        }
        return true;
    }
    if (available() < length) {
        return giveUpCandidate();
    }
    if (checksum_.isIntact(head(), length, offset_)) {
        blockSize_ = length;
        return false;
    }
    drop(BlockHeader::kSyncSize);
    if (listener_ != nullptr) {
        listener_->onChecksumFailed(candidate);
    }
    return true;
}

bool BlockFramer::giveUpCandidate()
{
    if (!ended_ || available() == 0) {
        return false;
    }
    drop(std::min(BlockHeader::kSyncSize, available()));
    return true;
}

void BlockFramer::reportDropped()
{
    const uint64_t count = unreported_;
    const size_t inBuffer = droppedInBuffer();
    const uint64_t end = offset_;
    unreported_ = 0;
    handedOver_ = 0;
    if (count == 0 || listener_ == nullptr) {
        return;
    }
    if (inBuffer != 0) {
        listener_->onDroppedPiece(end - inBuffer, head() - inBuffer, inBuffer);
    }
    listener_->onBytesDropped(end - count, count);
}

// Consumed bytes are removed when room is needed and they are the larger part, so that every byte
// is moved at most once on average. Those that are still to be reported are not consumed.
void BlockFramer::store(const uint8_t* bytes, size_t size)
{
    constexpr size_t kLeastCapacity = 16384;
    const size_t consumed = head_ - droppedInBuffer();
    const size_t kept = buffer_.size() - consumed;
    if (buffer_.capacity() - buffer_.size() < size && consumed >= kept) {
        std::copy(buffer_.begin() + static_cast<std::ptrdiff_t>(consumed), buffer_.end(),
                  buffer_.begin());
        buffer_.resize(kept);
        buffer_.reserve(kLeastCapacity);
        head_ -= consumed;
    }
    buffer_.insert(buffer_.end(), bytes, bytes + size);
}

} // namespace tqx
