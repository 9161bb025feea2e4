#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tqx::tool
{

/// Messages to standard error. A progress line that stands there is wiped first. All of this may
/// be called from any thread.
namespace words
{

/// "tqx: <text>"
void say(std::string_view text);

/// "tqx: <file>: <offset>: <text>"
void sayAt(std::string_view file, uint64_t offset, std::string_view text);

/// "<file>:<line>: <text>"
void sayLine(std::string_view file, uint64_t line, std::string_view text);

/// Whether standard error is a terminal on which a line can be written over, and standard output no
/// pipe: what stands behind one may write to the same terminal.
bool canShowProgress();

/// Shows `text` on the current line of the terminal, over what stood there and cut to its width; ""
/// wipes it. Where data has just gone to the terminal, nothing is shown.
void showProgress(std::string_view text);

/// To be called before data is written to standard output: clears the line for it if that is a
/// terminal, and keeps progress away for a second.
void makeWay();

} // namespace words

} // namespace tqx::tool
