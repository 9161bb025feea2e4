#pragma once

#include <cstddef>

namespace tqx::tool
{

/// Makes sure that so many inputs can be open at the same time, beside the files that the program
/// has open anyway. Throws ToolError when the system allows fewer.
void allowOpenFiles(size_t count);

} // namespace tqx::tool
