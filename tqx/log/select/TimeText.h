#pragma once

#include "tqx/log/time/GnssTime.h"
#include "tqx_log_export.h"

#include <string>

namespace tqx
{

/// Parses a point in GNSS time as users write it:
///
///     2400:216000.5               GNSS week and seconds of the week
///     2026-01-06T12:00:00 GPS     a date in GPS time
///     2026-01-06T11:59:42.500Z    a date in UTC; " UTC" is the same as Z
///
/// Seconds have up to three decimals. The seconds or the whole time of day of a date may be left
/// out, and a blank may replace the T. Throws DataError, beginning with `option`, for anything
/// else, for dates before 1980-01-06 and for dates without a time scale.
TQX_LOG_API GnssMillis parseTime(const std::string& option, const std::string& text);

} // namespace tqx
