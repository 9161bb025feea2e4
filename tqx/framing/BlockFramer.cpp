#include "tqx/framing/BlockFramer.h"

#include "korcg_load.h"
#include "tqx/framing/SyncSearch.h"

#include <algorithm>

namespace tqx
{

BlockFramer::Listener::~Listener() = default;

BlockFramer::BlockFramer(Listener* listener) : listener_(listener) {}

BlockFramer::~BlockFramer() = default;

void BlockFramer::append(const uint8_t* bytes, size_t size)
{
    if (size == 0) {
        return;
    }
    ended_ = false;
    if (available() == 0) {
        // Junk in front is not worth a copy.
        const size_t junk = findSync(bytes, size);
        offset_ += junk;
        unreported_ += junk;
        bytes += junk;
        size -= junk;
    }
    store(bytes, size);
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
    unreported_ = 0;
    if (count != 0 && listener_ != nullptr) {
        listener_->onBytesDropped(offset_ - count, count);
    }
}

// Consumed bytes are removed when room is needed and they are the larger part, so that every byte
// is moved at most once on average.
void BlockFramer::store(const uint8_t* bytes, size_t size)
{
    constexpr size_t kLeastCapacity = 16384;
    const size_t kept = available();
    if (buffer_.capacity() - buffer_.size() < size && head_ >= kept) {
        std::copy(buffer_.begin() + static_cast<std::ptrdiff_t>(head_), buffer_.end(),
                  buffer_.begin());
        buffer_.resize(kept);
        buffer_.reserve(kLeastCapacity);
        head_ = 0;
    }
    buffer_.insert(buffer_.end(), bytes, bytes + size);
}

} // namespace tqx
