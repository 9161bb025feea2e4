#pragma once

#include "tqx_log_export.h"

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
TQX_LOG_API CalendarDate dateOf(uint64_t days);

/// Days from 1980-01-06 to a date, which must exist; below 0 for one before.
TQX_LOG_API int64_t daysOf(const CalendarDate& date);

/// Whether the month has that day in that year.
TQX_LOG_API bool exists(const CalendarDate& date);

} // namespace tqx
