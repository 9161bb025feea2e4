#pragma once

#include "tqx_framing_export.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tqx
{

/// Checksums of overlapping stretches of one stream at a cost that does not grow with their
/// length. It keeps the checksum of the stream from some position up to marks at regular distances
/// after it; the checksum of any stretch follows from two marks and the few bytes between them and
/// its ends. Every byte of the stream is summed once for the marks, however many stretches it
/// belongs to.
class TQX_FRAMING_API PrefixChecksums
{
public:
    /// Longest stretch whose checksum can be asked for.
    static constexpr size_t longest = 0xffff;

    /// Checksum of the `size` bytes (at most longest) from `bytes` on, which are at `position` of
    /// the stream. Positions must not decrease from call to call.
    uint16_t of(const uint8_t* bytes, uint64_t position, size_t size);

private:
    static constexpr size_t stride = 8;
    static constexpr size_t markCount = 16384; ///< power of two; reaches farther than longest

    uint16_t& mark(uint64_t index) { return m_marks[static_cast<size_t>(index % markCount)]; }

    std::vector<uint16_t> m_marks; ///< a ring; mark k is the checksum of the stride * k bytes
                                   ///< from m_base on
    uint64_t m_base = 0;
    uint64_t m_lastMark = 0;
};

} // namespace tqx
