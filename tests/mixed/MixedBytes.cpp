#include "MixedBytes.h"

#include <array>
#include <cstdio>

uint32_t slowCrc24(const Bytes& bytes)
{
    uint32_t crc = 0;
    for (const uint8_t byte : bytes) {
        for (unsigned bit = 0x80; bit != 0; bit >>= 1U) {
            const bool isOdd = ((crc & 0x800000U) != 0) != ((byte & bit) != 0);
            crc = (crc << 1U & 0xffffffU) ^ (isOdd ? 0x864cfbU : 0U);
        }
    }
    return crc;
}

Bytes sentence(const std::string& content, char delimiter, unsigned wrong)
{
    unsigned sum = wrong;
    for (const char character : content) {
        sum ^= static_cast<uint8_t>(character);
    }
    std::array<char, 8> end = {};
    std::snprintf(end.data(), end.size(), "*%02X\r\n", sum);
    return text(delimiter + content + end.data());
}

Bytes frame(const Bytes& message)
{
    Bytes bytes = Bytes{0xd3, static_cast<uint8_t>(message.size() >> 8U),
                        static_cast<uint8_t>(message.size())} +
                  message;
    const uint32_t crc = slowCrc24(bytes);
    return bytes + Bytes{static_cast<uint8_t>(crc >> 16U), static_cast<uint8_t>(crc >> 8U),
                         static_cast<uint8_t>(crc)};
}

Bytes randomRun(std::mt19937& random)
{
    const auto below = [&](size_t limit) {
        return std::uniform_int_distribution<size_t>(0, limit - 1)(random);
    };
    const auto noise = [&](size_t size) {
        const Bytes alphabet = text("$!$!*AB1,>\r\n\r\n \t") + Bytes{0xd3, 0xd3, 0, 0, 1, 3};
        Bytes bytes(size);
        for (uint8_t& byte : bytes) {
            byte =
                below(4) == 0 ? static_cast<uint8_t>(below(256)) : alphabet[below(alphabet.size())];
        }
        return bytes;
    };
    const std::array<const char*, 7> lines = {"OK",   "a reply", "AB1",      "COM12>",
                                              "$@ab", "$R: x",   "x$GPA,1*5"};
    Bytes run;
    for (size_t parts = below(9); parts != 0; --parts) {
        Bytes part;
        switch (below(9)) {
        case 0:
            part = sentence("GPGGA,1", '$', below(3) == 0 ? 1 : 0);
            break;
        case 1:
            part = sentence("AIVDM,1,1,,A,x,0", '!');
            break;
        case 2:
            part = frame(noise(below(6) == 0 ? below(1024) : below(40)));
            break;
        case 3:
            part = frame(sentence("GPZDA,,") + frame(noise(below(4))) + noise(below(9)));
            break;
        case 4:
            part = text(lines[below(lines.size())]) + text("\r\n");
            break;
        case 5:
            part = text(below(2) == 0 ? "COM1>" : "IP10>");
            break;
        case 6:
            for (size_t empty = below(12); empty != 0; --empty) {
                part = part + text("\r\n");
            }
            break;
        case 7:
            part =
                text(below(2) == 0 ? "$GPTXT," : "") + Bytes(980 + below(25), 'x') + text("\r\n");
            break;
        default:
            part = noise(below(30));
        }
        if (below(6) == 0 && !part.empty()) {
            part =
                below(2) == 0 ? cut(part, below(part.size())) : flipped(part, below(part.size()));
        }
        run = run + part;
    }
    return run;
}
