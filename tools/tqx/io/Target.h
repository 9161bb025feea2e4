#pragma once

#include <string>
#include <vector>

namespace tqx::tool
{

/// Throws ToolError when one of the inputs is the regular file to be written: it would be gone
/// before it is read, or grow for ever. "-" is standard input or output.
void refuseSameFile(const std::vector<std::string>& inputs, const std::string& target);

/// Throws SourceError when one of the inputs cannot be opened, so that no output is emptied in
/// vain. Does not open other than regular files, but only checks whether they may be read.
void refuseUnreadable(const std::vector<std::string>& inputs);

/// Throws ToolError when binary data would be written to a terminal.
void refuseTerminal(const std::string& target);

} // namespace tqx::tool
