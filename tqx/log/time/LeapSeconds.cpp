#include "tqx/log/time/LeapSeconds.h"

#include "tqx/log/time/CalendarDate.h"

#include <fmt/compile.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <vector>

namespace tqx
{

namespace
{

// Days before which a leap second was inserted: IERS Bulletin C, as collected in the public list
// leap-seconds.list of the Earth Orientation Centre, state of 7 July 2025, valid until 28 June
// 2026.
constexpr std::array<CalendarDate, 18> insertions = {{
    {1981, 7, 1},
    {1982, 7, 1},
    {1983, 7, 1},
    {1985, 7, 1},
    {1988, 1, 1},
    {1990, 1, 1},
    {1991, 1, 1},
    {1992, 7, 1},
    {1993, 7, 1},
    {1994, 7, 1},
    {1996, 1, 1},
    {1997, 7, 1},
    {1999, 1, 1},
    {2006, 1, 1},
    {2009, 1, 1},
    {2012, 7, 1},
    {2015, 7, 1},
    {2017, 1, 1},
}};

const std::vector<uint64_t>& insertionDays()
{
    static const std::vector<uint64_t> days = [] {
        std::vector<uint64_t> list;
        std::transform(
            insertions.begin(), insertions.end(), std::back_inserter(list),
            [](const CalendarDate& date) { return static_cast<uint64_t>(daysOf(date)); });
        return list;
    }();
    return days;
}

constexpr uint64_t secondsPerDay = 86400;

/// Leap seconds that are over after so many seconds of GNSS time.
uint64_t insertedBefore(uint64_t seconds)
{
    uint64_t inserted = 0;
    for (const uint64_t day : insertionDays())
        inserted += seconds > day * secondsPerDay + inserted ? 1U : 0U;
    return inserted;
}

} // namespace

bool endsWithLeapSecond(uint64_t day)
{
    const std::vector<uint64_t>& days = insertionDays();
    return std::binary_search(days.begin(), days.end(), day + 1);
}

unsigned leapSecondsBefore(uint64_t day)
{
    const std::vector<uint64_t>& days = insertionDays();
    return static_cast<unsigned>(std::upper_bound(days.begin(), days.end(), day) - days.begin());
}

uint64_t utcMillis(GnssMillis millis)
{
    return millis - insertedBefore(millis / 1000) * 1000;
}

std::string utcText(GnssMillis millis)
{
    const uint64_t seconds = millis / 1000;
    const uint64_t inserted = insertedBefore(seconds);
    // In an inserted second the calendar stays at the end of the day.
    const std::vector<uint64_t>& days = insertionDays();
    const bool isLeap =
        inserted < days.size() && seconds == days[inserted] * secondsPerDay + inserted;
    const uint64_t utc = seconds - inserted - (isLeap ? 1 : 0);
    const CalendarDate date = dateOf(utc / secondsPerDay);
    const uint64_t ofDay = utc % secondsPerDay;
    return fmt::format(FMT_COMPILE("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}.{:03}Z"), date.year,
                       date.month, date.day, ofDay / 3600, ofDay / 60 % 60,
                       ofDay % 60 + (isLeap ? 1 : 0), millis % 1000);
}

} // namespace tqx
