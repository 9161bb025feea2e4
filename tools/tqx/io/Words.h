#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tool
{

/// Messages to standard error. A progress line that stands there is wiped first.
namespace words
{

/// "tqx: <text>"
void say(std::string_view text);

/// "tqx: <file>: <offset>: <text>"
void sayAt(std::string_view file, uint64_t offset, std::string_view text);

/// "<file>:<line>: <text>"
void sayLine(std::string_view file, uint64_t line, std::string_view text);

/// Shows `text` on the current line of the terminal, over what stood there; "" wipes it.
void showProgress(const std::string& text);

} // namespace words

} // namespace tool
