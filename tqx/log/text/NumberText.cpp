#include "tqx/log/text/NumberText.h"

#include "tqx/log/text/Digits.h"

#include <fmt/compile.h>
#include <fmt/format.h>

#include <cmath>
#include <iterator>

namespace tqx::number
{

namespace
{

constexpr size_t longestNumber = 40;

template<typename Number>
void appendFormatted(Buffer& out, Number value)
{
    char* begin = out.reserve(longestNumber);
    out.advance(static_cast<size_t>(fmt::format_to(begin, FMT_COMPILE("{}"), value) - begin));
}

template<typename Real>
void appendReal(Buffer& out, Real value)
{
    if (value == 0 && std::signbit(value)) {
        out.append("-0.0");
    } else {
        appendFormatted(out, value);
    }
}

} // namespace

void appendUnsigned(Buffer& out, uint64_t value)
{
    appendFormatted(out, value);
}

void appendSigned(Buffer& out, int64_t value)
{
    appendFormatted(out, value);
}

void appendFloat(Buffer& out, float value)
{
    appendReal(out, value);
}

// Many values are decimal numbers with few digits. With up to fifteen digits, only one of them is
// nearest to a double, so it is also the shortest text, and takes a third of the time.
void appendDouble(Buffer& out, double value)
{
    constexpr unsigned decimals = 4;
    constexpr double power = 10000;
    constexpr double mostDigits = 1e15;
    const double digits = value * power;
    if (std::fabs(digits) < mostDigits && value != 0) {
        const auto whole = static_cast<int64_t>(digits);
        if (static_cast<double>(whole) == digits && digits / power == value &&
            appendDecimal(out, whole < 0, static_cast<uint64_t>(whole < 0 ? -whole : whole),
                          decimals))
            return;
    }
    appendReal(out, value);
}

bool appendDecimal(Buffer& out, bool isNegative, uint64_t digits, unsigned decimals)
{
    constexpr uint64_t powers[] = {1,
                                   10,
                                   100,
                                   1000,
                                   10000,
                                   100000,
                                   1000000,
                                   10000000,
                                   100000000,
                                   1000000000,
                                   10000000000,
                                   100000000000,
                                   1000000000000,
                                   10000000000000,
                                   100000000000000,
                                   1000000000000000};
    constexpr uint64_t mostSmall = 10000; // smaller parts of one have an exponent
    if (decimals >= std::size(powers))
        return false;
    const uint64_t unit = powers[decimals];
    const uint64_t whole = digits / unit;
    const uint64_t fraction = digits - whole * unit;
    if (whole == 0 && fraction != 0 && fraction * mostSmall < unit)
        return false;
    char* const begin = out.reserve(longestNumber);
    char* end = begin;
    if (isNegative && digits != 0)
        *end++ = '-';
    end = fmt::format_to(end, FMT_COMPILE("{}"), whole);
    if (fraction != 0) {
        *end++ = '.';
        end += decimals;
        writeDigits(end, fraction, decimals);
        while (end[-1] == '0')
            --end;
    }
    out.advance(static_cast<size_t>(end - begin));
    return true;
}

} // namespace tqx::number
