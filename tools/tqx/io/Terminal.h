#pragma once

#include <cstddef>

namespace tqx::tool
{

/// Columns of the text that is written to standard output: those that the variable COLUMNS asks
/// for, else those of the terminal, else 80.
size_t outputWidth();

} // namespace tqx::tool
