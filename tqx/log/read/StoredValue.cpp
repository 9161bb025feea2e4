#include "tqx/log/read/StoredValue.h"

#include "tqx/log/read/LineError.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>
#include <string_view>

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

using Kind = JsonValue::Kind;

template<typename Value>
void store(const TQX_FieldLayout& field, void* record, uint32_t index, Value value)
{
    std::memcpy(TQX_element(field, record, index), &value, sizeof value);
}

/// A value as error messages show it, without the content of arrays and objects, which may be deep.
std::string shown(const JsonValue& value)
{
    constexpr size_t longest = 40;
    std::string text;
    switch (value.kind) {
    case Kind::Null:
        return "null";
    case Kind::False:
        return "false";
    case Kind::True:
        return "true";
    case Kind::Array:
        return value.size() == 0 ? "[]" : "[...]";
    case Kind::Object:
        return value.size() == 0 ? "{}" : "{...}";
    case Kind::Number:
        text = nlohmann::json::parse(value.text()).dump();
        break;
    case Kind::String:
        text = nlohmann::json(value.text()).dump(-1, ' ', true);
        break;
    }
    return text.size() > longest ? text.substr(0, longest) + "..." : text;
}

[[noreturn]] void failRange(const JsonValue& value, const std::string& lowest,
                            const std::string& highest)
{
    throw LineError(fmt::format("{} is out of range, {} to {}", shown(value), lowest, highest));
}

[[noreturn]] void failType(const JsonValue& value, const char* wanted)
{
    throw LineError(fmt::format("{} is not {}", shown(value), wanted));
}

bool isString(const JsonValue& value, std::string_view text)
{
    return value.kind == Kind::String && value.text() == text;
}

/// A number without fraction and exponent that fits into 64 bits.
struct Integer {
    uint64_t magnitude;
    bool isNegative;
};

std::optional<Integer> readInteger(const JsonValue& value)
{
    if (value.kind != Kind::Number)
        return std::nullopt;
    const std::string_view text = value.text();
    Integer integer = {0, text.front() == '-'};
    const char* end = text.data() + text.size();
    const auto [stop, error] =
        std::from_chars(text.data() + (integer.isNegative ? 1 : 0), end, integer.magnitude);
    constexpr uint64_t lowest = uint64_t{1} << 63U;
    if (stop != end || error != std::errc() || (integer.isNegative && integer.magnitude > lowest))
        return std::nullopt;
    return integer;
}

/// An integer that fits `width` bits, as two's complement.
uint64_t integerOf(const JsonValue& value, unsigned width, bool isSigned)
{
    const std::optional<Integer> integer = readInteger(value);
    if (!integer)
        failType(value, "an integer");
    const uint64_t all = ~uint64_t{0} >> (64 - width);
    const uint64_t highest = isSigned ? all >> 1U : all;
    const uint64_t lowest = isSigned ? highest + 1 : 0; // as a magnitude
    if (integer->magnitude > (integer->isNegative ? lowest : highest))
        failRange(value, isSigned ? fmt::format("-{}", lowest) : "0", std::to_string(highest));
    return integer->isNegative ? 0 - integer->magnitude : integer->magnitude;
}

/// Of numbers the nearest value of that type.
template<typename Real>
Real realOf(const JsonValue& value)
{
    if (value.kind == Kind::Number) {
        const std::string_view text = value.text();
        Real number = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        if (error == std::errc())
            return number;
        // Too large or too close to zero.
        const auto wide = nlohmann::json::parse(text).get<double>();
        if (std::fabs(wide) > static_cast<double>(std::numeric_limits<Real>::max()))
            failRange(value, "-3.4028235e+38", "3.4028235e+38");
        return static_cast<Real>(wide);
    }
    if (isString(value, "NaN"))
        return std::numeric_limits<Real>::quiet_NaN();
    if (isString(value, "Infinity"))
        return std::numeric_limits<Real>::infinity();
    if (isString(value, "-Infinity"))
        return -std::numeric_limits<Real>::infinity();
    failType(value, "a number, nor \"NaN\", \"Infinity\" or \"-Infinity\"");
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

void storeElement(const TQX_FieldLayout& field, void* record, uint32_t index,
                  const JsonValue& value)
{
    if (field.type == TQX_MemberType::F32) {
        store(field, record, index, realOf<float>(value));
    } else if (field.type == TQX_MemberType::F64) {
        store(field, record, index, realOf<double>(value));
    } else if (field.type == TQX_MemberType::Char) {
        const std::string text = latin1Of(value, 1);
        store(field, record, index, text.empty() ? '\0' : text.front());
    } else {
        storeInteger(field, record, index, integerOf(value, field.width, TQX_isSigned(field)));
    }
}

uint64_t bitsOf(const TQX_FieldLayout& field, const JsonValue& value)
{
    return integerOf(value, field.width, TQX_isSigned(field)) & ~uint64_t{0} >> (64 - field.width);
}

std::string latin1Of(const JsonValue& value, size_t capacity)
{
    if (value.kind != Kind::String)
        failType(value, "a string");
    const std::string_view utf8 = value.text();
    std::string text;
    for (size_t i = 0; i < utf8.size(); ++i) {
        const auto first = static_cast<uint8_t>(utf8[i]);
        if (first < 0x80) {
            text += utf8[i];
        } else if ((first & 0xfcU) == 0xc0 && i + 1 < utf8.size()) {
            const auto second = static_cast<uint8_t>(utf8[++i]);
            text += static_cast<char>((first & 3U) << 6U | (second & 0x3fU));
        } else {
            throw LineError("a text can only hold characters up to U+00FF");
        }
    }
    if (text.size() > capacity)
        throw LineError(fmt::format("{} characters, there is room for {}", text.size(), capacity));
    return text;
}

const JsonValue& arrayOf(const JsonValue& value)
{
    if (value.kind != Kind::Array)
        failType(value, "an array");
    return value;
}

const JsonValue& objectOf(const JsonValue& value)
{
    if (value.kind != Kind::Object)
        failType(value, "an object");
    return value;
}

} // namespace tqx
