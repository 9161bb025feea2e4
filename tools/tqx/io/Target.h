#pragma once

#include <string>
#include <vector>

namespace tqx::tool
{

/// Throws ToolError when one of the inputs is the regular file that is to be written: that would be
/// gone before it is read, or grow for ever. "-" are standard input and output.
void refuseSameFile(const std::vector<std::string>& inputs, const std::string& target);

/// Throws ToolError when bytes that are no text would be written to a terminal.
void refuseTerminal(const std::string& target);

} // namespace tqx::tool
