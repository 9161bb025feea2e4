#pragma once

#include "tqx/gnss/position/Position.h"
#include "tqx/log/text/Buffer.h"

#include <string>
#include <string_view>

namespace tqx
{

/// Appends a number with so many decimals; false, and nothing, when it is not known.
bool appendKnown(Buffer& out, double value, int decimals);

/// Appends text as content or attribute of XML: characters with a meaning there are escaped, those
/// that it cannot hold become blanks.
void appendXml(Buffer& out, std::string_view text);

/// UTC as XML has it, "2026-01-06T12:00:00.100Z". It has no second 60, so a leap second is the last
/// millisecond before.
std::string xmlTime(GnssMillis time);

/// "1 sigma", "95 %" or nothing.
std::string_view levelText(AccuracyLevel level);

} // namespace tqx
