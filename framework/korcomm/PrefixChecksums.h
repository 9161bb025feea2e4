#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/// Checksums of overlapping stretches of one stream at a cost that does not grow with their
/// length. It keeps the checksum of the stream from some position up to every fourth byte behind
/// it; the checksum of any stretch follows from those at its two ends. Every byte of the stream is
/// summed once, however many stretches it belongs to.
///
/// Memory: one table of 64 KiB, allocated at the first use.
class PrefixChecksums
{
public:
    /// Longest stretch that can be asked for.
    static constexpr size_t kLongest = 0xffff;

    /// Checksum of the `size` bytes (at most kLongest) from `bytes` on, which stand at `position`
    /// of the stream. Positions must not decrease from call to call, and the three bytes of the
    /// stream before `bytes` must be readable.
    uint16_t of(const uint8_t* bytes, uint64_t position, size_t size);

private:
    static constexpr size_t kStride = 4;
    static constexpr size_t kMarks = 0x8000; ///< power of two, covers kLongest twice

    uint16_t& mark(uint64_t index) { return marks_[static_cast<size_t>(index & (kMarks - 1))]; }

    std::vector<uint16_t> marks_; ///< a ring; mark k is the checksum of base_ .. base_ + 4k
    uint64_t base_ = 0;
    uint64_t lastMark_ = 0;
};
