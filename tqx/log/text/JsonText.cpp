#include "tqx/log/text/JsonText.h"

#include "tqx/log/text/NumberText.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tqx::json
{

namespace
{

/// Writes words for what is not a JSON number. False, and nothing appended, for all others.
template<typename Real>
bool appendNotFinite(Buffer& out, Real value)
{
    if (std::isfinite(value))
        return false;
    if (std::isnan(value)) {
        out.append("\"NaN\"");
    } else {
        out.append(value > 0 ? "\"Infinity\"" : "\"-Infinity\"");
    }
    return true;
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
    const bool isC1 = latin1 && character >= 0x80 && character < 0xa0;
    if (character < 0x20 || character == 0x7f || isC1)
        return {{'\\', 'u', '0', '0', hex[character >> 4U], hex[character & 15U]}, 6};
    if (latin1 && character >= 0x80) {
        return {{static_cast<char>(0xc0U | character >> 6U),
                 static_cast<char>(0x80U | (character & 0x3fU))},
                2};
    }
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

void appendFloat(Buffer& out, float value)
{
    if (!appendNotFinite(out, value))
        number::appendFloat(out, value);
}

void appendDouble(Buffer& out, double value)
{
    if (!appendNotFinite(out, value))
        number::appendDouble(out, value);
}

// Control characters outside ASCII have two bytes, 0xc2 and their code.
void appendString(Buffer& out, std::string_view text)
{
    static const std::array<Escape, 256> escapes = makeEscapes(false);
    const size_t start = out.size();
    appendEscaped(out, escapes, text.data(), text.size());
    if (text.find('\xc2') == std::string_view::npos)
        return;
    const std::string plain(out.view().substr(start));
    out.truncate(start);
    for (size_t i = 0; i < plain.size(); ++i) {
        const auto next = static_cast<uint8_t>(i + 1 < plain.size() ? plain[i + 1] : 0);
        if (plain[i] != '\xc2' || next < 0x80 || next >= 0xa0) {
            out.append(plain[i]);
            continue;
        }
        const Escape escape = makeEscape(next, true);
        out.append(escape.text, escape.length);
        ++i;
    }
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

} // namespace tqx::json
