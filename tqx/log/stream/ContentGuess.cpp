#include "tqx/log/stream/ContentGuess.h"

#include "korcg_load.h"
#include "tqx/log/mixed/BeginningSearch.h"
#include "tqx/log/mixed/Crc24.h"
#include "tqx/log/mixed/LineRules.h"
#include "tqx/log/stream/HeaderCheck.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace tqx
{

namespace
{

struct Signature {
    std::string_view bytes;
    size_t offset;
    Content content;
};

constexpr std::array<Signature, 7> signatures = {{
    {"\x1f\x8b", 0, Content::Gzip},
    {"\x28\xb5\x2f\xfd", 0, Content::Zstandard},
    {"\xfd"
     "7zXZ",
     0, Content::Xz},
    {"BZh", 0, Content::Bzip2},
    {"PK\x03\x04", 0, Content::Zip},
    {"RINEX VERSION / TYPE", 60, Content::Rinex},
    {"CRINEX VERS   / TYPE", 60, Content::CompactRinex},
}};

bool isText(char character)
{
    const auto byte = static_cast<unsigned char>(character);
    return byte >= ' ' ? byte != 0x7f : byte == '\t' || byte == '\n' || byte == '\r';
}

const uint8_t* bytesOf(std::string_view text)
{
    return reinterpret_cast<const uint8_t*>(text.data());
}

/// Size of the sentence "$GPGGA,...*hh", with its line end, if any, that the text begins with; 0
/// for none.
size_t sentenceAt(std::string_view text)
{
    constexpr size_t checksumSize = 3;
    const uint8_t* bytes = bytesOf(text);
    if (text.empty() || !beginsSentence(bytes[0]))
        return 0;
    const uint8_t* const last = bytes + std::min(text.size(), longestLine);
    const uint8_t* const end = std::find_if_not(bytes, last, isPrintable);
    const auto star = static_cast<size_t>(std::find(bytes, end, uint8_t{'*'}) - bytes);
    const size_t size = star + checksumSize;
    if (size > text.size() || checkSentence(bytes, size) != SentenceCheck::Right)
        return 0;
    const size_t next = text.find_first_not_of("\r\n", size);
    return next == std::string_view::npos ? text.size() : next;
}

/// Size of the RTCM 3 frame that the bytes begin with, 0 for none: preamble, ten bits of length,
/// message, checksum.
size_t frameAt(std::string_view text, Crc24& crc)
{
    constexpr size_t overhead = 6;
    const uint8_t* bytes = bytesOf(text);
    if (text.size() < overhead || bytes[0] != framePreamble || (bytes[1] & frameReserved) != 0)
        return 0;
    const size_t size = bytes[1] * size_t{256} + bytes[2] + overhead;
    crc.restart();
    return size <= text.size() && crc.holds(0, bytes, size) ? size : 0;
}

/// The parity of the 30-bit word in the low bits, given the two bits before it.
bool hasParity(uint32_t word)
{
    // Bits of the data, complemented by the last one of the word before, that each parity bit sums,
    // and which of the two bits before the word joins them.
    constexpr std::array<uint32_t, 6> masks = {0xec7cd2, 0x763e69, 0xbb1f34,
                                               0x5d8f9a, 0xaec7cd, 0x2dea27};
    constexpr std::array<unsigned, 6> before = {31, 30, 31, 30, 30, 31};
    uint32_t data = word >> 6U & 0xffffffU;
    if ((word >> 30U & 1U) != 0)
        data ^= 0xffffffU;
    for (unsigned i = 0; i < masks.size(); ++i) {
        uint32_t sum = word >> before[i] & 1U;
        for (uint32_t bits = data & masks[i]; bits != 0; bits &= bits - 1)
            sum ^= 1U;
        if (sum != (word >> (5 - i) & 1U))
            return false;
    }
    return true;
}

/// RTCM 2 has six bits per byte, the first one lowest, and neither length nor word boundaries: at
/// the correct one of the thirty possible alignments, nearly all words have correct parity.
bool isRtcm2(std::string_view text)
{
    constexpr size_t wordBytes = 5;
    constexpr size_t leastWords = 20;
    const auto isOther = [](char c) { return (static_cast<unsigned char>(c) & 0xc0U) != 0x40; };
    if (text.size() < (leastWords + 1) * wordBytes ||
        std::any_of(text.begin(), text.end(), isOther))
        return false;
    for (size_t start = 0; start < wordBytes; ++start) {
        uint32_t bits = 0;
        size_t words = 0;
        size_t right = 0;
        for (size_t i = start; i < text.size(); ++i) {
            for (unsigned bit = 0; bit < 6; ++bit)
                bits = bits << 1U | (static_cast<unsigned char>(text[i]) >> bit & 1U);
            if (i - start < wordBytes * 2 - 1 || (i - start) % wordBytes != wordBytes - 1)
                continue;
            ++words;
            right += hasParity(bits) ? 1 : 0;
        }
        if (words >= leastWords && right * 10 >= words * 9)
            return true;
    }
    return false;
}

/// Whether it contains a header of a block.
bool hasHeader(std::string_view text, const Schema& schema)
{
    constexpr size_t headerSize = 8;
    for (size_t i = 0; (i = text.find("$@", i)) != std::string_view::npos; ++i) {
        if (i + headerSize > text.size())
            return false;
        const uint8_t* header = bytesOf(text) + i;
        if (isPlausibleHeader(korcg_load_u16(header + 4), korcg_load_u16(header + 6), schema))
            return true;
    }
    return false;
}

/// NMEA, RTCM 3 or both, except for one message cut off at either end.
Content messagesIn(std::string_view text)
{
    Crc24 crc;
    size_t covered = 0;
    size_t sentences = 0;
    size_t frames = 0;
    for (size_t i = 0; i < text.size();) {
        const size_t sentence = sentenceAt(text.substr(i));
        const size_t frame = sentence == 0 ? frameAt(text.substr(i), crc) : 0;
        sentences += sentence != 0 ? 1 : 0;
        frames += frame != 0 ? 1 : 0;
        covered += sentence + frame;
        i += std::max(sentence + frame, size_t{1});
    }
    const size_t other = text.size() - covered;
    const size_t cutOff = frames != 0 ? 2 * Crc24::longest : 300;
    if (sentences + frames == 0 || other > std::max(text.size() / 20, std::min(cutOff, covered)))
        return Content::Unknown;
    if (frames == 0)
        return Content::Nmea;
    return sentences == 0 ? Content::Rtcm3 : Content::NmeaAndRtcm3;
}

} // namespace

Content guessContent(const uint8_t* bytes, size_t size, const Schema& schema)
{
    const std::string_view text(reinterpret_cast<const char*>(bytes), size);
    for (const Signature& one : signatures) {
        if (text.size() >= one.offset && text.substr(one.offset, one.bytes.size()) == one.bytes)
            return one.content;
    }
    if (const Content messages = messagesIn(text); messages != Content::Unknown)
        return messages;
    if (isRtcm2(text))
        return Content::Rtcm2;
    if (text.empty() || !std::all_of(text.begin(), text.end(), isText))
        return hasHeader(text, schema) ? Content::DamagedTqx : Content::Unknown;
    return text.substr(0, 2) == "{\"" ? Content::JsonLines : Content::Text;
}

const char* describeContent(Content content)
{
    switch (content) {
    case Content::Text:
        return "text";
    case Content::JsonLines:
        return "JSON Lines, which tqx encode turns into blocks";
    case Content::Gzip:
        return "compressed by gzip";
    case Content::Zstandard:
        return "compressed by zstd";
    case Content::Xz:
        return "compressed by xz";
    case Content::Bzip2:
        return "compressed by bzip2";
    case Content::Zip:
        return "a zip archive";
    case Content::Rinex:
        return "RINEX";
    case Content::CompactRinex:
        return "compact RINEX";
    case Content::Nmea:
        return "NMEA";
    case Content::Rtcm2:
        return "RTCM 2";
    case Content::Rtcm3:
        return "RTCM 3";
    case Content::NmeaAndRtcm3:
        return "NMEA and RTCM 3";
    case Content::DamagedTqx:
        return "TQX, damaged or cut off";
    case Content::Unknown:
        break;
    }
    return "binary data of another kind";
}

bool isReceiverOutput(Content content)
{
    return content == Content::Nmea || content == Content::Rtcm2 || content == Content::Rtcm3 ||
           content == Content::NmeaAndRtcm3;
}

} // namespace tqx
