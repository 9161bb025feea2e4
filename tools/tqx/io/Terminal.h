#pragma once

#include <cstddef>

namespace tqx::tool
{

/// Width of text on standard output: from the variable COLUMNS, else that of the terminal, else 80.
size_t outputWidth();

} // namespace tqx::tool
