// Ephemerides that are positions with their derivatives: GLONASS (ICD of the FDMA signals) and SBAS
// (DO-229).

#include "tqx/gnss/navigation/Adapters.h"
#include "tqx/gnss/navigation/Weeks.h"
#include "tqx/log/time/LeapSeconds.h"

#include "TQX_codec.h"

#include <cmath>

namespace tqx::navigation
{

using namespace Kor::MessageApi;

namespace
{

constexpr double secondsPerDay = 86400;
constexpr double moscowAhead = 10800; ///< seconds by which GLONASS time is ahead of UTC

} // namespace

void fillGlonass(Ephemeris& e, const void* block)
{
    const auto& record = *static_cast<const TQX_GLONav_s*>(block);
    const auto satellite = satelliteOf(record.SVID);
    if (!satellite || satellite->system != 'R')
        return;
    e.satellite = *satellite;
    const double week = weekNear(record.WN, record.WNc);
    e.reference = utcMillis(millisOf(week, record.t_oe));
    // The start of the frame in UTC nearest to the time of the block.
    const double now = static_cast<double>(utcMillis(e.received)) * 1e-3;
    const double start = record.t_k - moscowAhead;
    const double frame = start + std::round((now - start) / secondsPerDay) * secondsPerDay;
    e.transmitted = std::fmod(frame, secondsPerWeek);
    e.af0 = -static_cast<double>(record.tau_n);
    e.af1 = record.gamma_n;
    e.x = record.X;
    e.y = record.Y;
    e.z = record.Z;
    e.vx = record.Vx;
    e.vy = record.Vy;
    e.vz = record.Vz;
    e.ax = record.Ax;
    e.ay = record.Ay;
    e.az = record.Az;
    e.health = record.B_n >= 4 ? 1 : 0;
    if (record.FreqNr != 0)
        e.channel = record.FreqNr - 8;
    e.age = record.E_n;
    // Both sources of time parameters, P1, P2, P3, P4 and the kind of satellite, from bit 0 on.
    e.status = (record.Flags >> 5U & 3U) | (record.Flags & 3U) << 2U |
               (record.Flags >> 2U & 1U) << 4U | (record.Flags >> 3U & 1U) << 5U |
               (record.Flags >> 4U & 1U) << 6U | (record.M & 3U) << 7U;
    e.delay1 = record.DEL_tau_n;
    e.accuracyIndex = record.F_T;
    e.healthFlags = record.l_n << 2U;
}

void fillSbas(Ephemeris& e, const void* block)
{
    const auto& record = *static_cast<const TQX_GEONav_s*>(block);
    const auto satellite = satelliteOf(record.PRN);
    if (!satellite || satellite->system != 'S')
        return;
    e.satellite = *satellite;
    // The reference time is a time of day, the one nearest to the message.
    const double now = record.WNc * secondsPerWeek + record.TOW * 1e-3;
    const double reference =
        record.t_0 + std::round((now - record.t_0) / secondsPerDay) * secondsPerDay;
    e.reference = millisOf(0, reference);
    e.week = std::floor(reference / secondsPerWeek);
    e.transmitted = std::floor(now - e.week * secondsPerWeek);
    e.af0 = record.a_Gf0;
    e.af1 = record.a_Gf1;
    e.x = record.XG;
    e.y = record.YG;
    e.z = record.ZG;
    e.vx = record.XGDot;
    e.vy = record.YGDot;
    e.vz = record.ZGDot;
    e.ax = record.XGDotDot;
    e.ay = record.YGDotDot;
    e.az = record.ZGDotDot;
    constexpr uint8_t notUsable = 15;
    e.accuracy = record.URA == notUsable ? 32767 : accuracyOf(record.URA);
    e.health = record.URA == notUsable ? 1 : 0;
}

} // namespace tqx::navigation
