#pragma once

#include "TQX_Context.h"
#include "TQX_Layout.h"

#include <cstdint>

namespace Kor::MessageApi
{

/// Decodes one record field by field along its layout, with a guard before each field. This is
/// what every decoder does with input that its straight-line path does not take, and what yields
/// the code of the last field that did not fit.
///
/// Arguments and result are those of the generated TQX_decode_<Name>() functions. Arrays that were
/// allocated before a failure stay in the record for the caller to release.
TQX_CODEC_API int32_t decodeExactly(const TQX_TypeLayout& type, TQX_Context_s* context,
                                    const uint8_t* buffer, uint16_t size, uint32_t* offset,
                                    void* father, uint32_t explicitLength, void* record);

} // namespace Kor::MessageApi
