#include "JsonText.h"

#include "Digits.h"

#include <fmt/compile.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>

namespace tool::json
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
    if (std::isfinite(value)) {
        if (value == 0 && std::signbit(value))
            out.append("-0.0");
        else
            appendFormatted(out, value);
    } else if (std::isnan(value)) {
        out.append("\"NaN\"");
    } else {
        out.append(value > 0 ? "\"Infinity\"" : "\"-Infinity\"");
    }
}

/// Text of each byte within a string of Latin-1 characters, for most itself.
struct Escape {
    char text[6];
    uint8_t length;
};

Escape makeEscape(unsigned character, bool latin1)
{
    static constexpr char hex[] = "0123456789abcdef";
    static constexpr std::string_view special = "\"\\\b\f\n\r\t";
    static constexpr std::string_view letters = "\"\\bfnrt";
    const auto byte = static_cast<char>(character);
    if (const size_t at = special.find(byte); at != std::string_view::npos)
        return {{'\\', letters[at]}, 2};
    if (character < 0x20 || character == 0x7f)
        return {{'\\', 'u', '0', '0', hex[character >> 4U], hex[character & 15U]}, 6};
    if (latin1 && character >= 0x80)
        return {{static_cast<char>(0xc0U | character >> 6U),
                 static_cast<char>(0x80U | (character & 0x3fU))},
                2};
    return {{byte}, 1};
}

std::array<Escape, 256> makeEscapes(bool latin1)
{
    std::array<Escape, 256> escapes = {};
    for (unsigned character = 0; character < 256; ++character)
        escapes[character] = makeEscape(character, latin1);
    return escapes;
}

void appendEscaped(Buffer& out, const std::array<Escape, 256>& escapes, const char* text,
                   size_t length)
{
    out.append('"');
    for (size_t i = 0; i < length; ++i) {
        const Escape& escape = escapes[static_cast<uint8_t>(text[i])];
        std::memcpy(out.reserve(sizeof escape.text), escape.text, sizeof escape.text);
        out.advance(escape.length);
    }
    out.append('"');
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

// Many values are decimal numbers with few digits. Of up to fifteen digits, only one is next to a
// double, so it is the shortest text as well, and takes a third of the time.
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

void appendString(Buffer& out, std::string_view text)
{
    static const std::array<Escape, 256> escapes = makeEscapes(false);
    appendEscaped(out, escapes, text.data(), text.size());
}

void appendLatin1(Buffer& out, const char* text, size_t length)
{
    static const std::array<Escape, 256> escapes = makeEscapes(true);
    appendEscaped(out, escapes, text, length);
}

void appendBase64(Buffer& out, const uint8_t* bytes, size_t length)
{
    static constexpr char digits[] =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    char* to = out.reserve((length + 2) / 3 * 4 + 2);
    const char* const begin = to;
    *to++ = '"';
    for (size_t i = 0; i < length; i += 3) {
        const size_t left = length - i;
        const uint32_t group = static_cast<uint32_t>(bytes[i]) << 16U |
                               (left > 1 ? static_cast<uint32_t>(bytes[i + 1]) << 8U : 0U) |
                               (left > 2 ? static_cast<uint32_t>(bytes[i + 2]) : 0U);
        *to++ = digits[group >> 18U];
        *to++ = digits[group >> 12U & 63U];
        *to++ = left > 1 ? digits[group >> 6U & 63U] : '=';
        *to++ = left > 2 ? digits[group & 63U] : '=';
    }
    *to++ = '"';
    out.advance(static_cast<size_t>(to - begin));
}

std::string text(std::string_view characters)
{
    Buffer buffer;
    appendString(buffer, characters);
    return std::string(buffer.view());
}

std::string key(std::string_view name)
{
    return text(name) + ':';
}

} // namespace tool::json
