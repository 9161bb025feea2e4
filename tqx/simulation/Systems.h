#pragma once

#include "TQX_Format.h"
#include "tqx/gnss/orbit/System.h"

#include <cstdint>

namespace tqx::simulation
{

constexpr unsigned systemCount = 7;

/// The identifier of a satellite in blocks. Some numbers have a range of their own: those of BeiDou
/// and SBAS above 40 (of SBAS it is the PRN code minus 100), and of NavIC above 7.
constexpr uint8_t svidOf(System system, unsigned number)
{
    constexpr unsigned before[systemCount] = {0, 37, 70, 140, 180, 190, 100};
    const bool isHigh = number > (system == System::NavIc ? 7U : 40U);
    const unsigned base = isHigh && system == System::BeiDou  ? 182U
                          : isHigh && system == System::NavIc ? 208U
                          : isHigh && system == System::Sbas  ? 157U
                                                              : before[indexOf(system)];
    return static_cast<uint8_t>(base + number);
}

/// Frequency number of a GLONASS satellite as blocks hold it, 0 for all others.
constexpr uint8_t frequencySlot(System system, int channel)
{
    return static_cast<uint8_t>(system == System::Glonass ? channel + 8 : 0);
}

constexpr uint32_t secondsPerDay = 86400;
constexpr uint32_t secondsPerWeek = Kor::MessageApi::TQX_secondsPerWeek;

constexpr unsigned galileoWeekZero = 1024; ///< GPS week in which Galileo system time begins
constexpr unsigned navIcWeekZero = 1024;   ///< GPS week in which NavIC time begins
constexpr unsigned beiDouWeekZero = 1356;  ///< GPS week in which BeiDou time begins
constexpr uint32_t beiDouDelay = 14;       ///< seconds by which BeiDou time is behind GPS time
constexpr int8_t leapSeconds = 18;         ///< seconds by which UTC is behind GPS time since 2017
constexpr uint32_t moscowAhead = 10800;    ///< seconds by which GLONASS time is ahead of UTC

} // namespace tqx::simulation
