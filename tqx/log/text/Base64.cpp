#include "tqx/log/text/Base64.h"

#include <array>

namespace tqx
{

namespace
{

constexpr uint8_t noDigit = 0xff;

std::array<uint8_t, 256> makeValues()
{
    constexpr std::string_view digits =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::array<uint8_t, 256> values = {};
    values.fill(noDigit);
    for (size_t i = 0; i < digits.size(); ++i)
        values[static_cast<uint8_t>(digits[i])] = static_cast<uint8_t>(i);
    return values;
}

} // namespace

bool decodeBase64(std::string_view text, std::vector<uint8_t>& bytes)
{
    static const std::array<uint8_t, 256> values = makeValues();
    if (text.size() % 4 != 0)
        return false;
    for (size_t i = 0; i < text.size(); i += 4) {
        const bool last = i + 4 == text.size();
        const size_t padding =
            last ? (text[i + 3] == '=' ? 1U : 0U) + (text.substr(i + 2) == "==" ? 1U : 0U) : 0U;
        uint32_t group = 0;
        for (size_t k = 0; k < 4; ++k) {
            const bool pad = k >= 4 - padding;
            const uint8_t value = pad ? uint8_t{0} : values[static_cast<uint8_t>(text[i + k])];
            if (value == noDigit)
                return false;
            group = group << 6U | value;
        }
        for (size_t k = 0; k < 3 - padding; ++k)
            bytes.push_back(static_cast<uint8_t>(group >> (16U - 8U * static_cast<unsigned>(k))));
    }
    return true;
}

} // namespace tqx
