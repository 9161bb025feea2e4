#pragma once

#include "tqx_log_export.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tqx
{

/// Well-formed data that a port may send between blocks.
enum class NeighbourKind : uint8_t {
    Nmea,  ///< a sentence of NMEA 0183: "$GPGGA,...*hh" or "!AIVDM,...*hh", CR and LF included
    Rtcm3, ///< a frame of RTCM 10403, with preamble and checksum
    Ascii, ///< a line of text with its CR and LF, or a prompt such as "COM1>"
};

constexpr size_t neighbourKinds = 3;

/// A neighbour of the blocks in a mixed stream. It refers to the bytes of the object that returned
/// it.
struct TQX_LOG_API Neighbour {
    NeighbourKind kind;
    const uint8_t* data;
    size_t size;     ///< at most 1,029
    uint64_t offset; ///< of its first byte; see the object that returned it

    /// Talker and type of a sentence, "GPGGA" (3 to 15 capitals and digits); "" for other kinds.
    std::string_view getAddress() const;

    /// Message number of a frame, 0 to 4095; 0 for other kinds and frames too short for one.
    uint16_t getNumber() const;
};

/// Number of neighbours, and their bytes.
struct NeighbourCount {
    uint64_t count = 0;
    uint64_t bytes = 0;

    void add(const Neighbour& neighbour)
    {
        ++count;
        bytes += neighbour.size;
    }
};

} // namespace tqx
