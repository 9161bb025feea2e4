#pragma once

#include <cstdint>

namespace tqx
{

/// A day of the Gregorian calendar.
struct CalendarDate {
    unsigned year;
    unsigned month; ///< 1 to 12
    unsigned day;   ///< 1 to 31
};

/// The date that many days after 1980-01-06.
CalendarDate dateOf(uint64_t days);

/// Days from 1980-01-06 to a date, which must exist; below 0 for one before.
int64_t daysOf(const CalendarDate& date);

/// Whether the month has that day in that year.
bool exists(const CalendarDate& date);

} // namespace tqx
