#pragma once

#include "tqx/log/DataError.h"

#include <exception>

namespace tqx::tool
{

/// Why a command cannot continue with a file, or at all. The text is what follows "tqx: ".
class ToolError : public DataError
{
public:
    using DataError::DataError;
};

/// The reader of standard output is gone, or the program was interrupted while waiting for it. Not
/// a failure: the program ends quietly.
class ClosedPipe : public std::exception
{
};

} // namespace tqx::tool
