#include "tqx/log/mixed/LineRules.h"

#include <algorithm>

namespace tqx
{

namespace
{

constexpr size_t endSize = 3; // "*hh"

constexpr bool isDigit(uint8_t character)
{
    return character >= '0' && character <= '9';
}

/// Value of a hexadecimal digit, 16 for other characters.
constexpr unsigned digitValue(uint8_t character)
{
    if (isDigit(character))
        return character - unsigned{'0'};
    const unsigned letter = (character | 0x20U) - unsigned{'a'};
    return letter < 6 ? letter + 10 : 16;
}

/// Whether the text begins with an address, which ',' or the checksum ends.
bool hasAddress(const uint8_t* text, size_t size)
{
    constexpr size_t least = 3;
    constexpr size_t most = 15;
    size_t end = 1;
    while (end < size && (isCapital(text[end]) || isDigit(text[end])))
        ++end;
    const size_t length = end - 1;
    return length >= least && length <= most && isCapital(text[1]) &&
           (text[end] == ',' || end == size - endSize);
}

} // namespace

SentenceCheck checkSentence(const uint8_t* text, size_t size)
{
    if (size <= endSize)
        return SentenceCheck::None;
    const uint8_t* const end = text + size - endSize;
    const unsigned high = digitValue(end[1]);
    const unsigned low = digitValue(end[2]);
    if (*end != '*' || high > 15 || low > 15)
        return SentenceCheck::None;
    if (!beginsSentence(text[0]) || !hasAddress(text, size) ||
        std::any_of(text + 1, end, beginsSentence))
        return SentenceCheck::Wrong;
    unsigned sum = 0;
    for (const uint8_t* at = text + 1; at != end; ++at)
        sum ^= *at;
    return sum == high * 16 + low ? SentenceCheck::Right : SentenceCheck::Wrong;
}

bool mayBePrompt(const uint8_t* bytes, size_t size)
{
    for (size_t at = 0; at < size; ++at) {
        const uint8_t character = bytes[at];
        const bool fits = at < 2    ? isCapital(character)
                          : at == 2 ? isCapital(character) || isDigit(character)
                          : at == 3 ? isDigit(character)
                                    : character == '>';
        if (!fits)
            return false;
    }
    return true;
}

} // namespace tqx
