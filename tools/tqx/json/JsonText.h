#pragma once

#include "Buffer.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// JSON written straight into a buffer.
namespace tool::json
{

void appendUnsigned(Buffer& out, uint64_t value);
void appendSigned(Buffer& out, int64_t value);

/// Shortest number that reads back to the same value at the width of the type; a value that is not
/// finite becomes "NaN", "Infinity" or "-Infinity", a negative zero keeps its sign.
void appendFloat(Buffer& out, float value);
void appendDouble(Buffer& out, double value);

/// `digits` with the point moved to the left by `decimals`, without zeros at the end, as
/// appendDouble writes such a number of up to fifteen digits. False, and nothing written, for
/// numbers that are so small that it writes them with an exponent, and for more than 15 decimals.
bool appendDecimal(Buffer& out, bool isNegative, uint64_t digits, unsigned decimals);

/// String of UTF-8 text, quotes included.
void appendString(Buffer& out, std::string_view text);

/// String of Latin-1 characters, quotes included.
void appendLatin1(Buffer& out, const char* text, size_t length);

/// String of the bytes in base64, quotes included.
void appendBase64(Buffer& out, const uint8_t* bytes, size_t length);

/// The string as it would be appended.
std::string text(std::string_view characters);

/// A member's name as it stands before its value: "name":
std::string key(std::string_view name);

} // namespace tool::json
