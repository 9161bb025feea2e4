#include "tqx/log/read/LineError.h"

namespace tqx
{

LineError::LineError(const std::string& text, bool startsWithPlace)
    : std::runtime_error(text), m_hasPlace(startsWithPlace)
{
}

ScaledLineError::ScaledLineError()
    : LineError("holds scaled values, but only stored ones can be encoded; write them with dump "
                "--format jsonl --raw")
{
}

LineError LineError::at(const std::string& place, const std::string& text)
{
    return {place + ": " + text, true};
}

LineError LineError::inside(const std::string& place) const
{
    return {place + (m_hasPlace ? "." : ": ") + what(), true};
}

} // namespace tqx
