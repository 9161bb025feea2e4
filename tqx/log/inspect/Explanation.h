#pragma once

#include "tqx/log/inspect/Inspection.h"
#include "tqx/log/text/Buffer.h"
#include "tqx/log/value/ValueStyle.h"
#include "tqx_log_export.h"

namespace tqx
{

/// Appends an inspection as text: a head line, a row for each value with its place in the file and
/// in the block, its bytes, its name, the stored number and its meaning, and what is wrong with the
/// block, if anything. The style matters only for how units are written.
TQX_LOG_API void appendExplanation(Buffer& out, const Inspection& inspection,
                                   const ValueStyle& style = {});

} // namespace tqx
