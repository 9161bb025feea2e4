#include "tqx/log/read/LineError.h"

namespace tqx
{

LineError::LineError(const std::string& text, bool startsWithPlace)
    : std::runtime_error(text), hasPlace(startsWithPlace)
{
}

LineError LineError::at(const std::string& place, const std::string& text)
{
    return {place + ": " + text, true};
}

LineError LineError::inside(const std::string& place) const
{
    return {place + (hasPlace ? "." : ": ") + what(), true};
}

} // namespace tqx
