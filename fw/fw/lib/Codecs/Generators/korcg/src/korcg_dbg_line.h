#pragma once

#include <cstdarg>
#include <cstdint>
#include <string>

namespace korcg
{

/// Where a line comes from. None of the texts is null.
struct TraceOrigin {
    uint32_t level; ///< dbg_Level_e
    const char* module;
    const char* subModule;
    const char* function;
    const char* file;
    int line;
    uint64_t time; ///< milliseconds since 1970-01-01 UTC
};

/// A trace line without its line end: the fields selected by `fieldMask`, then the message.
std::string formatLine(uint32_t fieldMask, const TraceOrigin& origin, const char* format,
                       va_list arguments);

/// Now, in milliseconds since 1970-01-01 UTC.
uint64_t currentTime();

} // namespace korcg
