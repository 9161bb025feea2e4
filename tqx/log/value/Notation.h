#pragma once

#include "tqx/log/text/Buffer.h"
#include "tqx_log_export.h"

#include <string>
#include <string_view>

namespace tqx
{

/// How an output format writes values that are not numbers.
struct TQX_LOG_API Notation {
    std::string_view notAvailable;
    std::string (*name)(std::string_view characters);
    void (*appendLatin1)(Buffer& out, const char* text, size_t length);
    bool isStored = false;     ///< values as they are stored, without scale, names and notAvailable
    bool prefersNames = false; ///< a named value that means "not available" is written as its name
};

} // namespace tqx
