#pragma once

#include "tqx_gnss_export.h"

#include <cstdint>
#include <optional>
#include <string>

namespace tqx
{

/// A satellite as RINEX names it: the letter of its system and its number there.
struct SatelliteId {
    char system = ' ';  ///< G GPS, R GLONASS, E Galileo, C BeiDou, J QZSS, I NavIC, S SBAS
    uint8_t number = 0; ///< of SBAS the PRN code minus 100, of GLONASS the slot

    /// "G05"
    TQX_GNSS_API std::string text() const;

    friend bool operator==(const SatelliteId& a, const SatelliteId& b)
    {
        return a.system == b.system && a.number == b.number;
    }
    friend bool operator!=(const SatelliteId& a, const SatelliteId& b) { return !(a == b); }
    friend bool operator<(const SatelliteId& a, const SatelliteId& b)
    {
        return a.system != b.system ? a.system < b.system : a.number < b.number;
    }
};

/// The letters of all systems, in the order in which files list them.
constexpr char systemLetters[] = "GRECJIS";

constexpr unsigned systemCount = 7;

/// Place of a system in systemLetters.
constexpr unsigned systemIndex(char system)
{
    unsigned index = 0;
    while (index + 1 < systemCount && systemLetters[index] != system)
        ++index;
    return index;
}

/// The satellite of an identifier in blocks. Nothing for beams of the L band, for GLONASS
/// satellites whose slot is not known yet and for identifiers without a satellite.
TQX_GNSS_API std::optional<SatelliteId> satelliteOf(uint8_t svid);

/// The reverse: the identifier in blocks, 0 for a satellite that has none.
TQX_GNSS_API uint8_t svidOf(const SatelliteId& satellite);

} // namespace tqx
