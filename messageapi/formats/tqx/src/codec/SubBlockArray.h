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

extern "C" {

/// Frees the sub-block arrays of any record, with the arrays of their elements, by the type number
/// at its head. The record keeps its other values, has null arrays and zero counts afterwards and
/// can be released again. A record of type 0 or of an unknown type is left alone.
TQX_CODEC_API void TQX_release(void* record);
}
