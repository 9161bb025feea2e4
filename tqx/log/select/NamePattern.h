#pragma once

#include "tqx_log_export.h"

#include <string_view>

namespace tqx
{

/// Whether a name contains wildcards: * or ?.
TQX_LOG_API bool isPattern(std::string_view name);

/// Whether a name matches the pattern, case ignored: * matches any run of characters, ? any single
/// one, in UTF-8.
TQX_LOG_API bool matchesPattern(std::string_view name, std::string_view pattern);

} // namespace tqx
