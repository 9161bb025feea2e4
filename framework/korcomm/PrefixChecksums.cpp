#include "PrefixChecksums.h"

#include "korcg_crc.h"

uint16_t PrefixChecksums::of(const uint8_t* bytes, uint64_t position, size_t size)
{
    if (marks_.empty() || (position - base_) / kStride > lastMark_) {
        marks_.resize(kMarks);
        base_ = position;
        lastMark_ = 0;
        mark(0) = 0;
    }
    const uint64_t begin = position - base_;
    const uint64_t end = begin + size;

    // Marks lie at most three bytes before the position they serve.
    const auto at = [&](uint64_t offset) {
        return bytes + (static_cast<int64_t>(offset) - static_cast<int64_t>(begin));
    };
    uint16_t sum = mark(lastMark_);
    while (lastMark_ < end / kStride) {
        sum = korcg_crc16_bytes(at(lastMark_ * kStride), kStride, sum);
        mark(++lastMark_) = sum;
    }
    const auto upTo = [&](uint64_t offset) {
        const auto rest = static_cast<size_t>(offset % kStride);
        return korcg_crc16_bytes(at(offset - rest), rest, mark(offset / kStride));
    };
    return korcg_crc16_combine(upTo(begin), upTo(end), size);
}
