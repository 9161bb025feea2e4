#pragma once

#include "tqx/log/text/Buffer.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// JSON written straight into a buffer. In strings control characters (C0, DEL, C1) are escaped.
namespace tqx::json
{

/// As number::appendFloat and appendDouble; a value that is not finite becomes "NaN", "Infinity" or
/// "-Infinity".
void appendFloat(Buffer& out, float value);
void appendDouble(Buffer& out, double value);

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

} // namespace tqx::json
