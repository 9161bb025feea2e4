#pragma once

#include "tqx/log/DataError.h"

#include <exception>

namespace tqx::tool
{

/// Something that keeps a command from going on with a file or at all. The text is what comes
/// after "tqx: ".
class ToolError : public DataError
{
public:
    using DataError::DataError;
};

/// The reader of standard output went away, or the program was interrupted while it waited for that
/// reader. Not a failure: the program ends quietly.
class ClosedPipe : public std::exception
{
};

} // namespace tqx::tool
