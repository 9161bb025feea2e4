#pragma once

#include "model/Model.h"

#include <optional>
#include <string>
#include <string_view>

namespace korcg::generator
{

/// "u8", "f64", ...: the word that the description uses; `Text` types are not scalars.
std::optional<Scalar> scalarNamed(std::string_view word);

int bitsOf(Scalar type);
bool isInteger(Scalar type);
bool isSignedInteger(Scalar type);
bool isReal(Scalar type);

/// Smallest integer type that holds `width` bits (1 to 64).
Scalar integerOf(int width, bool isSigned);

/// "u13", "i8", "f64", "ch": how messages name the type of a field's value.
std::string valueTypeName(const Field& field);

/// Whether the field's value can be this number, seen as signed or unsigned by the field's type.
bool fits(const Field& field, const Number& number);

/// Whether a number is this whole number.
bool equals(const Number& number, int64_t value);

/// Largest value of an integer field.
uint64_t maximumOf(const Field& field);

} // namespace korcg::generator
