#pragma once

#include <stdexcept>
#include <string>

namespace tool
{

/// Something that keeps a command from going on with a file or at all. The text is what stands
/// behind "tqx: ".
class ToolError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// An input that cannot be opened or read. A command goes on with the next one.
class InputError : public ToolError
{
public:
    using ToolError::ToolError;
};

/// The reader of standard output went away, or the program was interrupted while it waited for that
/// reader. Not a failure: the program ends quietly.
class ClosedPipe : public std::exception
{
};

} // namespace tool
