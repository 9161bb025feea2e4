#pragma once

#include <cstddef>
#include <cstdint>

namespace tqx
{

/// Longest line, CR and LF included.
constexpr size_t longestLine = 1000;

/// Fewest characters of the first line of a text, so that damage does not pass for one.
constexpr size_t leastText = 4;

/// "COM1>": the name of a connection and '>'.
constexpr size_t promptSize = 5;

/// Characters that a line may contain: printable ASCII and tab.
constexpr bool isPrintable(uint8_t character)
{
    return (character >= ' ' && character <= '~') || character == '\t';
}

constexpr bool isCapital(uint8_t character)
{
    return character >= 'A' && character <= 'Z';
}

/// Whether a sentence of NMEA 0183 begins with this character.
constexpr bool beginsSentence(uint8_t character)
{
    return character == '$' || character == '!';
}

/// What a line is in terms of NMEA 0183.
enum class SentenceCheck {
    None,
    Wrong, ///< ends with a checksum, but is not a sentence or the checksum is wrong
    Right,
};

/// Judges the printable characters of a line, without its end. A sentence has an address of 3 to 15
/// capitals and digits, the delimiters '$' and '!' nowhere else, and always a checksum.
SentenceCheck checkSentence(const uint8_t* text, size_t size);

/// Whether these are the first characters of a prompt (`size` up to 5): two or three capitals, one
/// or two digits, four together, and '>'.
bool mayBePrompt(const uint8_t* bytes, size_t size);

} // namespace tqx
