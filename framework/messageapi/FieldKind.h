#pragma once

#include <cstdint>

/// What a field, or one value of it, holds. Use it as FieldType::Kind or FieldValue::Kind.
enum class FieldKind : uint8_t {
    Empty,     ///< no value
    U,         ///< unsigned integer
    I,         ///< two's-complement signed integer
    F32,       ///< IEEE float of 32 bits
    F64,       ///< IEEE float of 64 bits
    Ch,        ///< one character, Latin-1
    SubMessage ///< a message inside another one
};
