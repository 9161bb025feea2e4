#pragma once

#include "tqx/log/text/Buffer.h"
#include "tqx/log/time/CalendarDate.h"
#include "tqx/log/time/GnssTime.h"

#include <string>
#include <string_view>

/// Lines of RINEX headers and fields of fixed width.
namespace tqx::rinex
{

/// A header line: `content`, cut or filled to 60 columns, and its label in columns 61 to 80.
void appendHeaderLine(Buffer& out, std::string_view content, std::string_view label);

/// The text, cut or filled with blanks to `width` columns.
std::string field(std::string_view text, size_t width);

/// Latin-1 or UTF-8 as printable ASCII: each other character becomes one underscore.
std::string plain(std::string_view text);

/// A point in time, split into calendar fields.
struct CivilTime {
    explicit CivilTime(GnssMillis time);
    CalendarDate date;
    unsigned hour;
    unsigned minute;
    double second;
    unsigned dayOfYear; ///< from 1
};

/// A number in a field of 19 columns: "-1.234567890123e-04", blank when it is not finite.
void appendScientific(Buffer& out, double value);

} // namespace tqx::rinex
