#pragma once

#include "tqx/log/time/GnssTime.h"
#include "tqx_log_export.h"

#include <string>

namespace tqx
{

/// Reads a point of GNSS time as people write it:
///
///     2400:216000.5               GNSS week and seconds of the week
///     2026-01-06T12:00:00 GPS     a date in GPS time
///     2026-01-06T11:59:42.500Z    a date in UTC; " UTC" is the same as Z
///
/// Seconds have up to three decimals; of a date the seconds, or the whole time of day, may be left
/// out, and a blank may stand for the T. Throws DataError, with `option` at its beginning, for
/// anything else, for dates before 1980-01-06 and for dates without a word on their time scale.
TQX_LOG_API GnssMillis parseTime(const std::string& option, const std::string& text);

} // namespace tqx
