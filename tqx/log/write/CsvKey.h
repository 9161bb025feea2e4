#pragma once

#include "tqx/log/text/Buffer.h"
#include "tqx_log_export.h"

#include <cstdint>

/// The columns that every row begins with: which message of its type it is from, and its time.
namespace tqx::csv
{

/// "MessageIndex,WNc [week],TOW [second],UTC"
TQX_LOG_API void appendKeyColumns(Buffer& out);

/// The cells of them for a record of a main block, which is the `index`-th of its type, from 0.
TQX_LOG_API void appendKey(Buffer& out, uint64_t index, const void* record);

} // namespace tqx::csv
