#pragma once

#include <string>
#include <vector>

namespace tqx::tool
{

/// Throws ToolError when one of the inputs is the regular file that is to be written: that would be
/// gone before it is read, or grow for ever. "-" are standard input and output.
void refuseSameFile(const std::vector<std::string>& inputs, const std::string& target);

/// Throws SourceError when one of the inputs cannot be opened, for an output that is emptied must
/// not be for nothing. Does not open what is no regular file, only looks whether it may be read.
void refuseUnreadable(const std::vector<std::string>& inputs);

/// Throws ToolError when bytes that are no text would be written to a terminal.
void refuseTerminal(const std::string& target);

} // namespace tqx::tool
