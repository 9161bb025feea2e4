#include "tqx/framing/BlockFramer.h"

#include "korcg_crc.h"
#include "korcg_load.h"
#include "tqx/framing/SyncSearch.h"

#include <algorithm>

namespace tqx
{

namespace
{

constexpr size_t kHeaderSize = 8; // up to and with the length; also the least valid length
constexpr size_t kChecksumAt = 2;
constexpr size_t kCheckedFrom = 4;
constexpr size_t kLengthAt = 6;
constexpr size_t kSyncSize = 2;

} // namespace

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
    if (hasBlock() || available() < kHeaderSize) {
        return {nullptr, 0, 0, offset_};
    }
    return {head(), available(), korcg_load_u16(head() + kLengthAt), offset_};
}

bool BlockFramer::passWaiting()
{
    const Candidate candidate = waiting();
    if (candidate.data == nullptr ||
        !inner_.find(candidate.data + kSyncSize, candidate.size - kSyncSize, offset_ + kSyncSize)) {
        return false;
    }
    drop(kSyncSize);
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
    if (available() < kHeaderSize) {
        return giveUpCandidate();
    }
    const size_t length = korcg_load_u16(head() + kLengthAt);
    const uint64_t candidate = offset_;
    if (length < kHeaderSize) {
        drop(kSyncSize);
        if (listener_ != nullptr) {
            listener_->onInvalidLength(candidate);
        }
        return true;
    }
    if (available() < length) {
        return giveUpCandidate();
    }
    if (isIntact(length)) {
        blockSize_ = length;
        return false;
    }
    drop(kSyncSize);
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
    drop(std::min(kSyncSize, available()));
    return true;
}

bool BlockFramer::isIntact(size_t length)
{
    const uint8_t* checked = head() + kCheckedFrom;
    const size_t size = length - kCheckedFrom;
    const uint16_t expected = korcg_load_u16(head() + kChecksumAt);
    if (!mayBeSummedInVain(size)) {
        return prefixes_.of(checked, offset_ + kCheckedFrom, size) == expected;
    }
    if (korcg_crc16_bytes(checked, size) == expected) {
        return true;
    }
    summedInVain_ += size;
    return false;
}

// Summing in vain is allowed for twice the bytes of the stream so far, but not saved up over long
// sound stretches.
bool BlockFramer::mayBeSummedInVain(size_t size)
{
    constexpr uint64_t kMostSaved = 4 * PrefixChecksums::kLongest;
    const uint64_t limit = 2 * offset_;
    if (limit > summedInVain_ + kMostSaved) {
        summedInVain_ = limit - kMostSaved;
    }
    return summedInVain_ + size <= limit;
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
