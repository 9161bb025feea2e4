#pragma once

#include "tqx/gnss/position/Position.h"
#include "tqx/log/text/Buffer.h"

#include <string>
#include <string_view>

namespace tqx
{

/// Appends a number with `decimals` decimals; false, with nothing appended, when it is not known.
bool appendKnown(Buffer& out, double value, int decimals);

/// Appends text as XML content or attribute: special characters are escaped, those that XML cannot
/// hold become blanks.
void appendXml(Buffer& out, std::string_view text);

/// UTC in the form of XML, "2026-01-06T12:00:00.100Z". It has no second 60, so a leap second
/// becomes the last millisecond before it.
std::string xmlTime(GnssMillis time);

/// "1 sigma", "95 %" or nothing.
std::string_view levelText(AccuracyLevel level);

} // namespace tqx
