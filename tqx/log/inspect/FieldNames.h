#pragma once

#include "TQX_FieldFacts.h"
#include "TQX_Layout.h"
#include "tqx_log_export.h"

#include <string>
#include <vector>

namespace tqx
{

/// The fields without which a field of a type is not available: "CN0", or "Doppler of Channel" for
/// a field of the block or sub-block that holds this one.
TQX_LOG_API std::vector<std::string> inputNames(const Kor::MessageApi::TQX_TypeLayout& type,
                                                const Kor::MessageApi::TQX_FieldFacts& field);

/// The stored value that means "not available", for fields that have one.
TQX_LOG_API std::string doNotUseText(const Kor::MessageApi::TQX_FieldLayout& layout,
                                     const Kor::MessageApi::TQX_FieldFacts& field);

} // namespace tqx
