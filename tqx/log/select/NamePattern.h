#pragma once

#include "tqx_log_export.h"

#include <string_view>

namespace tqx
{

/// Whether a name holds characters that stand for others: * or ?.
TQX_LOG_API bool isPattern(std::string_view name);

/// Whether a name is what the pattern says, case ignored: * is any run of characters, ? any one,
/// in UTF-8.
TQX_LOG_API bool matchesPattern(std::string_view name, std::string_view pattern);

} // namespace tqx
