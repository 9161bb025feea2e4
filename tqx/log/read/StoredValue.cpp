#include "tqx/log/read/StoredValue.h"

#include "tqx/log/read/LineError.h"

#include <fmt/format.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string_view>

namespace tqx
{

using namespace Kor::MessageApi;
using nlohmann::json;

namespace
{

template<typename Value>
void store(const TQX_FieldLayout& field, void* record, uint32_t index, Value value)
{
    std::memcpy(TQX_element(field, record, index), &value, sizeof value);
}

[[noreturn]] void failRange(const json& value, const std::string& lowest,
                            const std::string& highest)
{
    throw LineError(fmt::format("{} is out of range, {} to {}", value.dump(), lowest, highest));
}

/// A value as a message shows it; of arrays and objects, which may be deep, nothing inside.
std::string shown(const json& value)
{
    constexpr size_t longest = 40;
    if (value.is_structured())
        return value.empty() ? value.dump() : value.is_array() ? "[...]" : "{...}";
    const std::string text = value.dump(-1, ' ', true);
    return text.size() > longest ? text.substr(0, longest) + "..." : text;
}

[[noreturn]] void failType(const json& value, const char* wanted)
{
    throw LineError(fmt::format("{} is no {}", shown(value), wanted));
}

/// JSON's "-0", which is an integer, too.
bool isMinusZero(const json& value)
{
    return value.is_number_integer() && !value.is_number_unsigned() && value.get<int64_t>() == 0;
}

/// An integer that fits `width` bits, as two's complement.
uint64_t integerOf(const json& value, unsigned width, bool isSigned)
{
    if (!value.is_number_integer())
        failType(value, "integer");
    const uint64_t all = ~uint64_t{0} >> (64 - width);
    if (isSigned) {
        const auto highest = static_cast<int64_t>(all >> 1U);
        const bool tooLarge =
            value.is_number_unsigned() && value.get<uint64_t>() > static_cast<uint64_t>(highest);
        const auto number = value.get<int64_t>();
        if (tooLarge || number < -highest - 1)
            failRange(value, std::to_string(-highest - 1), std::to_string(highest));
        return static_cast<uint64_t>(number);
    }
    if (isMinusZero(value))
        return 0;
    if (!value.is_number_unsigned() || value.get<uint64_t>() > all)
        failRange(value, "0", std::to_string(all));
    return value.get<uint64_t>();
}

/// A double that lies exactly between two floats may be the nearest double to a shorter decimal
/// that stands for either of them; then it is the float whose own shortest text it is.
float nearestFloat(double value)
{
    const auto rounded = static_cast<float>(value);
    const float other = std::nextafter(rounded, value > static_cast<double>(rounded)
                                                    ? std::numeric_limits<float>::infinity()
                                                    : -std::numeric_limits<float>::infinity());
    const bool isBetween = static_cast<double>(rounded) != value &&
                           (static_cast<double>(rounded) + static_cast<double>(other)) / 2 == value;
    if (isBetween && std::stod(fmt::format("{}", other)) == value)
        return other;
    return rounded;
}

double doubleOf(const json& value)
{
    if (isMinusZero(value))
        return -0.0;
    if (value.is_number())
        return value.get<double>();
    if (value == "NaN")
        return std::numeric_limits<double>::quiet_NaN();
    if (value == "Infinity")
        return std::numeric_limits<double>::infinity();
    if (value == "-Infinity")
        return -std::numeric_limits<double>::infinity();
    failType(value, "number, nor \"NaN\", \"Infinity\" or \"-Infinity\"");
}

float floatOf(const json& value)
{
    const double number = doubleOf(value);
    if (std::isnan(number))
        return std::numeric_limits<float>::quiet_NaN();
    if (std::isinf(number))
        return static_cast<float>(number);
    // What rounds to a value beyond the largest float.
    constexpr double limit = 0x1.ffffffp127;
    if (std::fabs(number) >= limit)
        failRange(value, "-3.4028235e+38", "3.4028235e+38");
    return nearestFloat(number);
}

} // namespace

void storeInteger(const TQX_FieldLayout& field, void* record, uint32_t index, uint64_t value)
{
    switch (TQX_elementSize(field)) {
    case 1:
        return store(field, record, index, static_cast<uint8_t>(value));
    case 2:
        return store(field, record, index, static_cast<uint16_t>(value));
    case 4:
        return store(field, record, index, static_cast<uint32_t>(value));
    default:
        return store(field, record, index, value);
    }
}

void storeElement(const TQX_FieldLayout& field, void* record, uint32_t index, const json& value)
{
    if (field.type == TQX_MemberType::F32) {
        store(field, record, index, floatOf(value));
    } else if (field.type == TQX_MemberType::F64) {
        store(field, record, index, doubleOf(value));
    } else if (field.type == TQX_MemberType::Char) {
        const std::string text = latin1Of(value, 1);
        store(field, record, index, text.empty() ? '\0' : text.front());
    } else {
        storeInteger(field, record, index, integerOf(value, field.width, TQX_isSigned(field)));
    }
}

uint64_t bitsOf(const TQX_FieldLayout& field, const json& value)
{
    return integerOf(value, field.width, TQX_isSigned(field)) & ~uint64_t{0} >> (64 - field.width);
}

std::string latin1Of(const json& value, size_t capacity)
{
    if (!value.is_string())
        failType(value, "string");
    const auto& utf8 = value.get_ref<const std::string&>();
    std::string text;
    for (size_t i = 0; i < utf8.size(); ++i) {
        const auto first = static_cast<uint8_t>(utf8[i]);
        if (first < 0x80) {
            text += utf8[i];
        } else if ((first & 0xfcU) == 0xc0 && i + 1 < utf8.size()) {
            const auto second = static_cast<uint8_t>(utf8[++i]);
            text += static_cast<char>((first & 3U) << 6U | (second & 0x3fU));
        } else {
            throw LineError("a text holds characters up to U+00FF only");
        }
    }
    if (text.size() > capacity)
        throw LineError(fmt::format("{} characters, there is room for {}", text.size(), capacity));
    return text;
}

const json::array_t& arrayOf(const json& value)
{
    if (!value.is_array())
        failType(value, "array");
    return value.get_ref<const json::array_t&>();
}

const json::object_t& objectOf(const json& value)
{
    if (!value.is_object())
        failType(value, "object");
    return value.get_ref<const json::object_t&>();
}

} // namespace tqx
