#pragma once

#include "TQX_Format.h"

#include <cmath>
#include <cstdint>

namespace tqx::navigation
{

constexpr uint16_t noWeek = 65535;
constexpr double secondsPerWeek = Kor::MessageApi::TQX_secondsPerWeek;
constexpr int beiDouWeekZero = 1356; ///< GPS week in which BeiDou time begins

/// The GPS week near that of a block's header for a week that may count from another week or roll
/// over, by multiples of `cycle`.
inline double weekNear(unsigned given, unsigned header, unsigned cycle = 1024)
{
    if (given == noWeek)
        return header;
    const double difference = static_cast<double>(header) - given;
    return given + cycle * std::round(difference / cycle);
}

/// The BDT week for a week that counts as BeiDou does or as GPS does.
inline double beiDouWeek(unsigned given, unsigned header)
{
    if (given == noWeek)
        return static_cast<double>(header) - beiDouWeekZero;
    const bool isGps = given > header - static_cast<unsigned>(beiDouWeekZero / 2);
    return static_cast<double>(given) - (isGps ? beiDouWeekZero : 0);
}

/// Milliseconds since 1980-01-06 of a second of a week of GPS.
inline uint64_t millisOf(double week, double second)
{
    const double millis = (week * secondsPerWeek + second) * 1000;
    return millis > 0 ? static_cast<uint64_t>(std::llround(millis)) : 0;
}

} // namespace tqx::navigation
