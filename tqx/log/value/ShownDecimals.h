#pragma once

#include "TQX_FieldFacts.h"
#include "tqx_log_export.h"

namespace tqx
{

/// With how many decimals the values of a number field are shown: those that it is given, else as
/// many as one step of its scale factor needs. Negative where a step does not show in the given
/// decimals; then the number is better written with significant digits.
TQX_LOG_API int shownDecimals(const Kor::MessageApi::TQX_FieldFacts& field);

} // namespace tqx
