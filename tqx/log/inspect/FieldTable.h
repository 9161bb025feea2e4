#pragma once

#include "TQX_Layout.h"
#include "tqx/log/text/Buffer.h"
#include "tqx/log/value/ValueStyle.h"
#include "tqx_log_export.h"

namespace tqx
{

/// Appends what a type is and a table of its fields: where they are, how wide they are, their
/// units, scales, names of values, revisions and meaning. The style matters only for how units are
/// written.
TQX_LOG_API void appendFieldTable(Buffer& out, const Kor::MessageApi::TQX_TypeLayout& type,
                                  const ValueStyle& style = {});

} // namespace tqx
