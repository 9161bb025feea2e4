#pragma once

#include "tqx/log/text/Buffer.h"
#include "tqx_log_export.h"

#include <cstddef>
#include <string>
#include <string_view>

/// Text from outside (logs, file names, arguments) made safe for a terminal. Control characters
/// (C0, DEL, C1) become "\n", "\r", "\t" or "\x1b", so that a text can neither control the terminal
/// nor pass for another line.
namespace tqx
{

/// Appends Latin-1 characters in UTF-8.
TQX_LOG_API void appendPrintableLatin1(Buffer& out, std::string_view text);

/// The same of UTF-8 text; bytes that are no UTF-8 become "\xff", too.
TQX_LOG_API std::string printable(std::string_view text);

/// printable(), cut to about `most` bytes with "..." after them.
TQX_LOG_API std::string shortened(std::string_view text, size_t most = 80);

} // namespace tqx
