#pragma once

#include "tqx/gnss/observation/SatelliteId.h"
#include "tqx/log/record/DecodedBlock.h"
#include "tqx/log/time/GnssTime.h"
#include "tqx_gnss_export.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

namespace tqx
{

/// The navigation messages that carry ephemerides.
enum class NavigationMessage : uint8_t {
    Lnav,
    Cnav,
    Cnv1,
    Cnv2,
    Cnv3,
    Inav,
    Fnav,
    D1,
    D2,
    Fdma,
    Sbas
};

/// As RINEX 4 names it: "LNAV".
TQX_GNSS_API const char* nameOf(NavigationMessage message);

/// Orbit and clock of a satellite from its navigation message, in the units of RINEX: metres,
/// seconds, radians. What a message does not have is NaN.
struct TQX_GNSS_API Ephemeris {
    static constexpr double none = std::numeric_limits<double>::quiet_NaN();

    SatelliteId satellite;
    NavigationMessage message = NavigationMessage::Lnav;
    GnssMillis received = 0; ///< time of the block

    /// Reference time of the clock: milliseconds since 1980-01-06 by the clock of the system, which
    /// is that of UTC for GLONASS, of BDT for BeiDou, and of GPS or equal to it for the others.
    GnssMillis reference = 0;

    double af0 = none; ///< of GLONASS with the sign of the others: satellite time minus system time
    double af1 = none;
    double af2 = none;

    double iode = none; ///< issue of the ephemeris
    double iodc = none; ///< issue of the clock, of BeiDou D1 and D2 its age
    double toe = none;  ///< of the week that counts as the system does
    double week = none; ///< of toe; of Galileo and NavIC aligned to weeks of GPS, of BeiDou BDT
    double sqrtA = none;
    double e = none;
    double i0 = none;
    double omega0 = none;
    double omega = none;
    double m0 = none;
    double deltaN = none;
    double omegaDot = none;
    double iDot = none;
    double cuc = none;
    double cus = none;
    double crc = none;
    double crs = none;
    double cic = none;
    double cis = none;
    double aDot = none;
    double deltaNDot = none;

    double x = none; ///< of GLONASS and SBAS
    double y = none;
    double z = none;
    double vx = none;
    double vy = none;
    double vz = none;
    double ax = none;
    double ay = none;
    double az = none;

    double health = none;   ///< 0 when healthy
    double accuracy = none; ///< metres
    double delay1 = none;   ///< first group delay of the message
    double delay2 = none;
    double isc1 = none; ///< corrections between signals, in the order of the message
    double isc2 = none;
    double isc3 = none;
    double isc4 = none;
    double isc5 = none;
    double isc6 = none;
    double sources = none; ///< where Galileo data come from, as bits
    double codesOnL2 = none;
    double l2Data = none;
    double fit = none; ///< hours of GPS; of QZSS the flag

    double channel = none; ///< of GLONASS
    double age = none;     ///< days
    double status = none;  ///< bits of GLONASS
    double accuracyIndex = none;
    double healthFlags = none; ///< bits of GLONASS

    double top = none; ///< time of prediction, seconds of the week
    double weekOp = none;
    double satelliteType = none;
    double uraEd = none; ///< indices
    double uraNed0 = none;
    double uraNed1 = none;
    double uraNed2 = none;
    double sisaiOe = none;
    double sisaiOcb = none;
    double sisaiOc1 = none;
    double sisaiOc2 = none;
    double sismai = none;
    double integrity = none;

    /// When the message was sent: seconds of the week of toe, negative before it; for GLONASS of
    /// the week in UTC.
    double transmitted = none;

    /// Whether blocks of this number hold an ephemeris.
    static bool wants(uint16_t blockNumber);

    /// Converts such a block; nothing when it has no time, names no satellite or holds the message
    /// of NavIC on L1.
    static std::optional<Ephemeris> of(const DecodedBlock& decoded);
};

/// A number of an ephemeris with its name and the unit as the description of the format has it.
struct EphemerisParameter {
    const char* name;
    const char* unit;
    double Ephemeris::*member;
};

/// All of them, in the order of tables.
TQX_GNSS_API const std::vector<EphemerisParameter>& ephemerisParameters();

/// Whether two have the same content, whenever they were sent and received.
TQX_GNSS_API bool isSame(const Ephemeris& a, const Ephemeris& b);

} // namespace tqx
