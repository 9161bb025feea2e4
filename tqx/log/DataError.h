#pragma once

#include "tqx_log_export.h"

#include <stdexcept>
#include <string>

namespace tqx
{

/// Why the library cannot do what it was asked to: the request makes no sense, or an input cannot
/// be read. what() is one line for the user, without a program's name.
class TQX_LOG_API DataError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// An input that cannot be opened or read: "<file>: <reason>" or "<file>: <offset>: <reason>".
/// Other inputs may still be read.
class TQX_LOG_API SourceError : public DataError
{
public:
    using DataError::DataError;
};

} // namespace tqx
