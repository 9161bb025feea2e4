#pragma once

#include "tqx_log_export.h"

#include <stdexcept>
#include <string>

namespace tqx
{

/// Why a line of JSON cannot be encoded as a block. The text names the place inside the line.
class TQX_LOG_API LineError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;

    /// The same error, seen from one level further out: "<place>: <text>", or "<place>.<text>"
    /// where the text begins with a place of its own.
    LineError inside(const std::string& place) const;

    /// An error at a place inside the line.
    static LineError at(const std::string& place, const std::string& text);

private:
    LineError(const std::string& text, bool startsWithPlace);

    bool m_hasPlace = false;
};

/// A line of scaled values, from which the content of a block cannot be restored.
class TQX_LOG_API ScaledLineError : public LineError
{
public:
    ScaledLineError();
};

} // namespace tqx
