#include "tqx/log/text/FixedNumber.h"

#include "tqx/log/text/Digits.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>

namespace tqx
{

namespace
{

// All exact.
constexpr double powers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                             1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr int mostDecimals = static_cast<int>(std::size(powers)) - 1;

/// All decimal digits of a finite number other than zero, and where the point is among them: the
/// number is 0.<digits> times ten to the power of `point`.
struct ExactDigits {
    explicit ExactDigits(double value)
    {
        constexpr int most = 767; // that a double can have
        char text[most + 32];
        const auto end = std::to_chars(text, text + sizeof text, std::fabs(value),
                                       std::chars_format::scientific, most - 1)
                             .ptr;
        const std::string_view all(text, static_cast<size_t>(end - text));
        const size_t exponent = all.find('e');
        digits = all[0];
        digits += all.substr(2, exponent - 2);
        const size_t sign = exponent + 1; // from_chars takes no plus
        std::from_chars(text + sign + (all[sign] == '+' ? 1 : 0), end, point);
        ++point;
    }

    /// Keeps the first `count` digits (which may be 0 or negative) and rounds the last of them.
    void keep(int count)
    {
        const bool isUp = count >= 0 && static_cast<size_t>(count) < digits.size() &&
                          digits[static_cast<size_t>(count)] >= '5';
        digits.resize(static_cast<size_t>(std::max(count, 0)), '0');
        if (!isUp)
            return;
        size_t place = digits.size();
        while (place != 0 && digits[place - 1] == '9')
            digits[--place] = '0';
        if (place != 0) {
            ++digits[place - 1];
        } else {
            digits.insert(digits.begin(), '1');
            ++point;
        }
    }

    std::string digits;
    int point = 0;
};

bool appendSpecial(Buffer& out, double value)
{
    if (std::isfinite(value))
        return false;
    out.append(std::isnan(value) ? "nan" : value > 0 ? "inf" : "-inf");
    return true;
}

void appendExact(Buffer& out, double value, int decimals)
{
    if (value < 0)
        out.append('-');
    ExactDigits number(value);
    number.keep(number.point + decimals);
    const auto whole = static_cast<size_t>(std::max(number.point, 0));
    // Zeros between the point and the first digit; all decimals if the number became zero.
    const size_t zeros =
        std::min(static_cast<size_t>(std::max(-number.point, 0)), static_cast<size_t>(decimals));
    out.append(whole == 0 ? "0" : std::string_view(number.digits).substr(0, whole));
    if (decimals == 0)
        return;
    std::string fraction(zeros, '0');
    fraction += std::string_view(number.digits).substr(whole);
    fraction.resize(static_cast<size_t>(decimals), '0');
    out.append('.');
    out.append(fraction);
}

/// Without exact arithmetic. False, and nothing appended, where the rounding is not certain: a
/// number so close to a tie that multiplying it by the power of ten may have brought it to the
/// other side, or one whose digits, the point left out, make `limit` or more. Numbers that are not
/// finite are among these, and so is everything with more than 22 decimals.
bool appendFast(Buffer& out, double value, int decimals, double limit)
{
    if (decimals < 0 || decimals > mostDecimals)
        return false;
    const double product = std::fabs(value) * powers[decimals];
    if (!(product < limit))
        return false;
    // Both the whole and the rest are exact; the product itself is off by half a unit of its last
    // place at most, a relative 2^-53.
    auto number = static_cast<uint64_t>(static_cast<int64_t>(product));
    const double rest = product - static_cast<double>(number);
    if (std::fabs(rest - 0.5) <= product * 0x1p-52)
        return false;
    number += rest > 0.5 ? 1 : 0;

    // With more decimals than this the number has none before the point, and needs no such power.
    constexpr int mostToSplit = 16;
    const auto unit = static_cast<uint64_t>(powers[std::min(decimals, mostToSplit)]);
    auto whole = static_cast<uint64_t>(static_cast<int64_t>(std::fabs(value)));
    uint64_t fraction = number - whole * unit;
    if (fraction >= unit) {
        fraction -= unit;
        ++whole;
    }

    constexpr size_t longest = 48; // a sign, 16 digits, the point and 22 decimals
    char* const begin = out.reserve(longest);
    char* end = begin;
    if (value < 0)
        *end++ = '-';
    end = std::to_chars(end, begin + longest, whole).ptr;
    if (decimals != 0) {
        *end++ = '.';
        end += decimals;
        writeDigits(end, fraction, static_cast<unsigned>(decimals));
    }
    out.advance(static_cast<size_t>(end - begin));
    return true;
}

/// Decimals of the shortest text of a float.
int ownDecimals(float value)
{
    char text[64];
    const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed).ptr;
    const std::string_view digits(text, static_cast<size_t>(end - text));
    const size_t point = digits.find('.');
    return point == std::string_view::npos ? 0 : static_cast<int>(digits.size() - point - 1);
}

// A float is shown with no more than its own decimals and zeros after them. The number that these
// stand for is half a unit of the float's last place away from it at most; up to so many digits,
// that makes no difference to what they are rounded to.
constexpr double limitOfSingles = 0x1p23;
constexpr double limitOfDoubles = 0x1p53;

} // namespace

void appendFixed(Buffer& out, double value, int decimals)
{
    if (!appendFast(out, value, decimals, limitOfDoubles) && !appendSpecial(out, value))
        appendExact(out, value, decimals);
}

void appendFixed(Buffer& out, float value, int decimals)
{
    const auto wide = static_cast<double>(value);
    if (appendFast(out, wide, decimals, limitOfSingles) || appendSpecial(out, wide))
        return;
    const int shown = std::min(decimals, ownDecimals(value));
    appendExact(out, wide, shown);
    if (shown == decimals)
        return;
    if (shown == 0)
        out.append('.');
    out.append(std::string(static_cast<size_t>(decimals - shown), '0'));
}

void appendSignificant(Buffer& out, double value, int digits)
{
    if (appendSpecial(out, value))
        return;
    if (value == 0)
        return out.append('0');
    if (value < 0)
        out.append('-');
    ExactDigits number(value);
    number.keep(digits);
    const int exponent = number.point - 1;
    std::string& text = number.digits;
    text.erase(text.find_last_not_of('0') + 1);
    constexpr int smallest = -5;
    if (exponent <= smallest || exponent >= digits) {
        if (text.size() > 1)
            text.insert(1, 1, '.');
        const int magnitude = std::abs(exponent);
        text += exponent < 0 ? "e-" : "e+";
        text += (magnitude < 10 ? "0" : "") + std::to_string(magnitude);
    } else if (exponent < 0) {
        text.insert(0, "0." + std::string(static_cast<size_t>(-exponent - 1), '0'));
    } else {
        const auto whole = static_cast<size_t>(number.point);
        if (text.size() <= whole) {
            text.resize(whole, '0');
        } else {
            text.insert(whole, 1, '.');
        }
    }
    out.append(text);
}

} // namespace tqx
