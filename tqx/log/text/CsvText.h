#pragma once

#include "tqx/log/text/Buffer.h"
#include "tqx_log_export.h"

#include <cstddef>
#include <string>
#include <string_view>

/// Cells of comma-separated values in the form of RFC 4180, in UTF-8.
namespace tqx::csv
{

/// Appends a cell with these characters, in quotes where necessary.
TQX_LOG_API std::string cell(std::string_view characters);

/// Appends a cell with a text in Latin-1.
TQX_LOG_API void appendLatin1(Buffer& out, const char* text, size_t length);

/// The same for a text that must not be taken for a formula, see guardFrom().
TQX_LOG_API void appendGuardedLatin1(Buffer& out, const char* text, size_t length);

/// Puts an apostrophe in front of what is after `start` in the buffer if a spreadsheet would
/// take that for a formula: if it begins with = + - @, a tab or a carriage return.
TQX_LOG_API void guardFrom(Buffer& out, size_t start);

/// Makes what is after `start` in the buffer one cell.
TQX_LOG_API void quoteFrom(Buffer& out, size_t start);

} // namespace tqx::csv
