#pragma once

#include "tqx/gnss/navigation/Ephemeris.h"
#include "tqx/log/record/DecodedBlock.h"
#include "tqx/log/time/GnssTime.h"
#include "tqx_gnss_export.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace tqx
{

/// Parameters of the ionosphere as a system broadcasts them: the model of Klobuchar of GPS and
/// BeiDou (four coefficients of the amplitude, four of the period, seconds and semicircles), or the
/// effective ionisation level and the disturbance flags of Galileo.
struct TQX_GNSS_API Ionosphere {
    char system = 'G';
    GnssMillis received = 0;
    GnssMillis reference = 0; ///< when it was sent, by the clock of the system
    std::array<double, 8> values = {};
    unsigned disturbance = 0; ///< of Galileo, bit 0 for region 1

    /// How many of the values count.
    unsigned getCount() const { return system == 'E' ? 3 : 8; }

    static bool wants(uint16_t blockNumber);
    static std::optional<Ionosphere> of(const DecodedBlock& decoded);
};

/// An offset between two time systems: a0 + a1 dt + a2 dt^2 seconds by which the first is ahead of
/// the second, beyond whole seconds.
struct TQX_GNSS_API TimeOffset {
    std::string kind; ///< "GPUT", as RINEX names it
    GnssMillis received = 0;
    GnssMillis reference = 0; ///< by the clock of the first system
    double week = 0;          ///< of the reference, as RINEX counts it; 0 where it does not
    double second = 0;        ///< of that week
    double a0 = 0;
    double a1 = 0;
    double a2 = 0;
    double transmitted = 0; ///< seconds of the week

    static bool wants(uint16_t blockNumber);

    /// Converts such a block: up to two offsets.
    static std::array<std::optional<TimeOffset>, 2> of(const DecodedBlock& decoded);
};

} // namespace tqx
