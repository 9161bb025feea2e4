#pragma once

#include "TQX_Format.h"
#include "tqx_log_export.h"

#include <cstdint>
#include <optional>
#include <string>

namespace tqx
{

/// A point of GNSS time in milliseconds since 1980-01-06, without leap seconds.
using GnssMillis = uint64_t;

constexpr GnssMillis secondsPerWeek = Kor::MessageApi::TQX_secondsPerWeek;
constexpr GnssMillis millisPerWeek = Kor::MessageApi::TQX_millisPerWeek;

/// The time of a block's header, nothing when the header says that it is not available.
TQX_LOG_API std::optional<GnssMillis> gnssMillis(uint32_t tow, uint16_t week);

/// "2300:604000.100", week and seconds of the week.
TQX_LOG_API std::string weekText(GnssMillis millis);

/// "2024-02-10T23:46:40.100", the date in GNSS time.
TQX_LOG_API std::string dateText(GnssMillis millis);

/// Both, for people: "2300:604000.100  2024-02-10T23:46:40.100 GPS".
TQX_LOG_API std::string timeText(GnssMillis millis);

} // namespace tqx
