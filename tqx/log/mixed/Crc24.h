#pragma once

#include "tqx_log_export.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tqx
{

/// Checks frames that end with their CRC-24Q (polynomial 0x1864cfb, initial value 0, highest bit
/// first), as RTCM 10403 frames do. Frames may overlap: each byte is summed about once, however
/// many candidates claim it.
class TQX_LOG_API Crc24
{
public:
    /// The longest frame that can be checked.
    static constexpr size_t longest = 1029;

    /// Whether the last three of the `size` bytes (3 to `longest`) are the checksum of those before
    /// them. `offset` is where they are in the stream; an offset must have the same byte in every
    /// call until restart().
    bool holds(uint64_t offset, const uint8_t* frame, size_t size);

    /// Forgets the stream.
    void restart() { m_sums.clear(); }

private:
    uint64_t m_start = 0;         ///< offset at which the sums begin
    std::vector<uint32_t> m_sums; ///< of the first 0, 1, 2, ... bytes from there on
};

} // namespace tqx
