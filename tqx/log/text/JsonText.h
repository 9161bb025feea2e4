#pragma once

#include "tqx/log/text/Buffer.h"
#include "tqx_log_export.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// JSON written straight into a buffer. In strings control characters (C0, DEL, C1) are escaped.
namespace tqx::json
{

/// As number::appendFloat and appendDouble; a value that is not finite becomes "NaN", "Infinity" or
/// "-Infinity".
TQX_LOG_API void appendFloat(Buffer& out, float value);
TQX_LOG_API void appendDouble(Buffer& out, double value);

/// String of UTF-8 text, quotes included.
TQX_LOG_API void appendString(Buffer& out, std::string_view text);

/// String of Latin-1 characters, quotes included.
TQX_LOG_API void appendLatin1(Buffer& out, const char* text, size_t length);

/// String of the bytes in base64, quotes included.
TQX_LOG_API void appendBase64(Buffer& out, const uint8_t* bytes, size_t length);

/// The string that would be appended.
TQX_LOG_API std::string text(std::string_view characters);

/// A member's name as it is written before its value: "name":
TQX_LOG_API std::string key(std::string_view name);

} // namespace tqx::json
