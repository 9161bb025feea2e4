#include "tqx/gnss/rinex/HeaderText.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace tqx::rinex
{

namespace
{

constexpr size_t contentWidth = 60;
constexpr size_t labelWidth = 20;
constexpr size_t numberWidth = 19;
constexpr int decimals = 12;
constexpr uint64_t millisPerDay = 86400000;

} // namespace

std::string field(std::string_view text, size_t width)
{
    std::string cells(text.substr(0, width));
    cells.resize(width, ' ');
    return cells;
}

void appendHeaderLine(Buffer& out, std::string_view content, std::string_view label)
{
    out.append(field(content, contentWidth));
    out.append(field(label, labelWidth));
    out.append('\n');
}

std::string plain(std::string_view text)
{
    std::string cells;
    bool wasReplaced = false;
    for (const char character : text) {
        const bool isAscii = character >= ' ' && character <= '~';
        const bool isRestOfLetter = (static_cast<unsigned char>(character) & 0xC0U) == 0x80U;
        if (isAscii) {
            cells += character;
        } else if (!wasReplaced || !isRestOfLetter) {
            cells += '_';
        }
        wasReplaced = !isAscii;
    }
    const size_t last = cells.find_last_not_of(' ');
    cells.resize(last == std::string::npos ? 0 : last + 1);
    return cells;
}

CivilTime::CivilTime(GnssMillis time)
    : date(dateOf(time / millisPerDay)), hour(static_cast<unsigned>(time / 3600000 % 24)),
      minute(static_cast<unsigned>(time / 60000 % 60)),
      second(static_cast<double>(time % 60000) * 1e-3),
      dayOfYear(static_cast<unsigned>(static_cast<int64_t>(time / millisPerDay) -
                                      daysOf({date.year, 1, 1}) + 1))
{
}

void appendScientific(Buffer& out, double value)
{
    char digits[32];
    size_t length = 0;
    // Exponents of three digits would need one more column; such numbers are zero for all purposes.
    if (std::isfinite(value)) {
        const double kept = std::fabs(value) < 1e-99 ? 0 : value;
        const auto end = std::to_chars(digits, digits + sizeof digits, kept,
                                       std::chars_format::scientific, decimals);
        length = static_cast<size_t>(end.ptr - digits);
    }
    for (size_t i = std::min(length, numberWidth); i < numberWidth; ++i)
        out.append(' ');
    out.append(digits, std::min(length, numberWidth));
}

} // namespace tqx::rinex
