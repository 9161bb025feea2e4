#pragma once

#include "tqx/log/text/Buffer.h"
#include "tqx_log_export.h"

#include <string>
#include <string_view>

namespace tqx
{

/// How a form of output writes values that are no numbers.
struct TQX_LOG_API Notation {
    std::string_view notAvailable;
    std::string (*name)(std::string_view characters);
    void (*appendLatin1)(Buffer& out, const char* text, size_t length);
    bool isStored = false;     ///< values as they are stored, without scale, names and notAvailable
    bool prefersNames = false; ///< a value that has a name and means not available has the name
};

} // namespace tqx
