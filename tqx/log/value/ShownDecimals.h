#pragma once

#include "TQX_FieldFacts.h"
#include "tqx_log_export.h"

namespace tqx
{

/// With how many decimals the values of a number field are shown: those of its description, else as
/// many as one step of its scale factor needs. Negative where one step would not show in these; the
/// number is then better written with significant digits.
TQX_LOG_API int shownDecimals(const Kor::MessageApi::TQX_FieldFacts& field);

} // namespace tqx
