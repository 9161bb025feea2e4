#include "tqx/log/text/PrintableText.h"

#include "tqx/log/text/Latin1.h"

#include <cstdint>

namespace tqx
{

namespace
{

bool isControl(uint32_t code)
{
    constexpr uint32_t firstPrintable = 0x20;
    constexpr uint32_t del = 0x7f;
    constexpr uint32_t endOfC1 = 0xa0;
    return code < firstPrintable || (code >= del && code < endOfC1);
}

template<typename Text>
void appendEscape(Text& out, uint8_t code)
{
    static constexpr char hex[] = "0123456789abcdef";
    const char letter = code == '\n' ? 'n' : code == '\r' ? 'r' : code == '\t' ? 't' : 'x';
    const char escape[] = {'\\', letter, hex[code >> 4U], hex[code & 15U]};
    out.append(escape, letter == 'x' ? 4 : 2);
}

/// Length of the character that the text begins with, 0 when it is not UTF-8.
size_t lengthOfFirst(std::string_view text, uint32_t& code)
{
    static constexpr uint32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    const auto first = static_cast<uint8_t>(text.front());
    const size_t length = first < 0x80              ? 1
                          : (first & 0xe0U) == 0xc0 ? 2
                          : (first & 0xf0U) == 0xe0 ? 3
                          : (first & 0xf8U) == 0xf0 ? 4
                                                    : 0;
    if (length == 0 || length > text.size())
        return 0;
    code = length == 1 ? first : first & (0x7fU >> length);
    for (size_t i = 1; i < length; ++i) {
        const auto byte = static_cast<uint8_t>(text[i]);
        if ((byte & 0xc0U) != 0x80)
            return 0;
        code = code << 6U | (byte & 0x3fU);
    }
    const bool isSurrogate = code >= 0xd800 && code < 0xe000;
    return code < smallest[length] || code > 0x10ffff || isSurrogate ? 0 : length;
}

} // namespace

void appendPrintableLatin1(Buffer& out, std::string_view text)
{
    for (const char& character : text) {
        const auto code = static_cast<uint8_t>(character);
        if (isControl(code)) {
            appendEscape(out, code);
        } else {
            appendLatin1(out, {&character, 1});
        }
    }
}

std::string printable(std::string_view text)
{
    std::string shown;
    shown.reserve(text.size());
    while (!text.empty()) {
        uint32_t code = 0;
        const size_t length = lengthOfFirst(text, code);
        if (length == 0) {
            appendEscape(shown, static_cast<uint8_t>(text.front()));
        } else if (isControl(code)) {
            appendEscape(shown, static_cast<uint8_t>(code));
        } else {
            shown.append(text.substr(0, length));
        }
        text.remove_prefix(length == 0 ? 1 : length);
    }
    return shown;
}

std::string shortened(std::string_view text, size_t most)
{
    if (text.size() <= most)
        return printable(text);
    // Not inside a character.
    size_t end = most;
    for (size_t steps = 0; steps < 3 && (static_cast<uint8_t>(text[end]) & 0xc0U) == 0x80; ++steps)
        --end;
    return printable(text.substr(0, end)) + "...";
}

} // namespace tqx
