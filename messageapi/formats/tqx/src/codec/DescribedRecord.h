#pragma once

#include "TQX_Layout.h"

namespace Kor::MessageApi
{

/// Computes what a described type derives once this field of the record is read.
void deriveAfter(const TQX_TypeLayout& type, const TQX_FieldLayout& field, void* record);

} // namespace Kor::MessageApi
