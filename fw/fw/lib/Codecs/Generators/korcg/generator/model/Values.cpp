#include "model/Values.h"

#include <fmt/format.h>

#include <array>
#include <utility>

namespace korcg::generator
{

namespace
{

constexpr std::array<std::pair<std::string_view, Scalar>, 10> scalarWords = {{
    {"u8", Scalar::U8},
    {"i8", Scalar::I8},
    {"u16", Scalar::U16},
    {"i16", Scalar::I16},
    {"u32", Scalar::U32},
    {"i32", Scalar::I32},
    {"u64", Scalar::U64},
    {"f32", Scalar::F32},
    {"f64", Scalar::F64},
    {"char", Scalar::Char},
}};

} // namespace

std::optional<Scalar> scalarNamed(std::string_view word)
{
    for (const auto& [name, type] : scalarWords) {
        if (name == word)
            return type;
    }
    return std::nullopt;
}

int bitsOf(Scalar type)
{
    switch (type) {
    case Scalar::U8:
    case Scalar::I8:
    case Scalar::Char:
        return 8;
    case Scalar::U16:
    case Scalar::I16:
        return 16;
    case Scalar::U32:
    case Scalar::I32:
    case Scalar::F32:
        return 32;
    case Scalar::U64:
    case Scalar::F64:
        return 64;
    }
    return 0;
}

bool isReal(Scalar type)
{
    return type == Scalar::F32 || type == Scalar::F64;
}

bool isInteger(Scalar type)
{
    return !isReal(type) && type != Scalar::Char;
}

bool isSignedInteger(Scalar type)
{
    return type == Scalar::I8 || type == Scalar::I16 || type == Scalar::I32;
}

Scalar integerOf(int width, bool isSigned)
{
    if (width <= 8)
        return isSigned ? Scalar::I8 : Scalar::U8;
    if (width <= 16)
        return isSigned ? Scalar::I16 : Scalar::U16;
    if (width <= 32)
        return isSigned ? Scalar::I32 : Scalar::U32;
    return Scalar::U64;
}

std::string valueTypeName(const Field& field)
{
    if (field.type == Scalar::Char)
        return "ch";
    if (isReal(field.type))
        return fmt::format("f{}", bitsOf(field.type));
    return fmt::format("{}{}", isSignedInteger(field.type) ? 'i' : 'u', field.width);
}

bool equals(const Number& number, int64_t value)
{
    if (const auto* whole = std::get_if<uint64_t>(&number))
        return value >= 0 && *whole == static_cast<uint64_t>(value);
    const auto* whole = std::get_if<int64_t>(&number);
    return whole && *whole == value;
}

uint64_t maximumOf(const Field& field)
{
    const int bits = isSignedInteger(field.type) ? field.width - 1 : field.width;
    return bits >= 64 ? ~uint64_t{0} : (uint64_t{1} << bits) - 1;
}

bool fits(const Field& field, const Number& number)
{
    if (!isInteger(field.type))
        return std::holds_alternative<double>(number);
    if (const auto* whole = std::get_if<uint64_t>(&number))
        return *whole <= maximumOf(field);
    if (const auto* whole = std::get_if<int64_t>(&number)) {
        if (*whole >= 0)
            return static_cast<uint64_t>(*whole) <= maximumOf(field);
        return isSignedInteger(field.type) && *whole >= -static_cast<int64_t>(maximumOf(field)) - 1;
    }
    return false;
}

} // namespace korcg::generator
