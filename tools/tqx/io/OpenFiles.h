#pragma once

#include <cstddef>

namespace tqx::tool
{

/// Makes sure that `inputs` inputs can be open at the same time, besides the files that are always
/// open. Throws ToolError when the system allows fewer.
void allowOpenFiles(size_t count);

} // namespace tqx::tool
