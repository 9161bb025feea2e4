#pragma once

#include "tqx/log/time/GnssTime.h"
#include "tqx_log_export.h"

#include <cstdint>
#include <string>

namespace tqx
{

/// Whether UTC has a leap second at the end of a day, counted from 1980-01-06.
TQX_LOG_API bool endsWithLeapSecond(uint64_t day);

/// Number of leap seconds inserted into UTC from 1980-01-06 up to the beginning of that day. Days
/// after the end of the list have the number of its last day.
TQX_LOG_API unsigned leapSecondsBefore(uint64_t day);

/// Milliseconds since 1980-01-06 on a UTC clock that ignores leap seconds: a leap second has the
/// time of the second after it.
TQX_LOG_API uint64_t utcMillis(GnssMillis millis);

/// "2024-02-10T23:46:22.100Z", the time in UTC; a leap second is the second 60.
TQX_LOG_API std::string utcText(GnssMillis millis);

} // namespace tqx
