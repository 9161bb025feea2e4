#pragma once

#include "TQX_Layout.h"

#include <cstdint>

namespace Kor::MessageApi
{

/// Adds one initialised element to the sub-block array `field` of `record` and counts it. This is
/// what the generated TQX_append_<Block>_<Sub>() functions do. Earlier element pointers of the
/// array become invalid. The count is not guarded: with a one-byte count field a caller stops at
/// 255 elements.
void* appendElement(const TQX_TypeLayout& type, const TQX_FieldLayout& field, void* record);

} // namespace Kor::MessageApi
