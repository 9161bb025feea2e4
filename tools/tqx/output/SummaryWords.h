#pragma once

#include "tqx/log/summary/Intervals.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tqx::tool
{

/// The names of the inputs, "3 files, a to c" when they are many.
std::string headOf(const std::vector<std::string>& names);

/// "1.5 s"
std::string secondsText(uint64_t millis);

/// "59 s", from a minute on with hours, minutes and seconds: "3599 s, 0:59:59"
std::string durationText(uint64_t millis);

/// "10 Hz", "every 30 s", or "-" when blocks come at no regular interval.
std::string rateText(const Intervals& intervals);

} // namespace tqx::tool
