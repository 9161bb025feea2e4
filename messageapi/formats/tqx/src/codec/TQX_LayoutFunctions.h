#pragma once

#include "TQX_Context.h"
#include "TQX_Layout.h"

#include <cstdint>

/// Functions of the codec on a record with a given layout, of a built-in or described type. The
/// contracts are those of TQX_CodecFunctions.h.
namespace Kor::MessageApi
{

/// Gives every member its starting value. Takes any memory of the size of the record.
TQX_CODEC_API void TQX_initRecord(const TQX_TypeLayout& type, void* record);

/// Decodes one framed block of this main block's type field by field. Results and failures are
/// those of TQX_decode() for an enabled type; the block number is not looked at. An array of
/// entries of a described type that cannot all be in the rest of the block is not allocated: the
/// result is the SIZE_UNDERFLOW code of the entries.
TQX_CODEC_API int32_t TQX_decodeAs(const TQX_TypeLayout& type, TQX_Context_s* context,
                                   const uint8_t* buffer, uint16_t size, void* record);

/// TQX_reencode() for a main block's record of that type.
TQX_CODEC_API int32_t TQX_reencodeAs(const TQX_TypeLayout& type, unsigned char* buffer,
                                     uint16_t bufferSize, const void* record);

/// TQX_append_<Name>_<Field>() for the sub-block array `field` of a record of that type.
TQX_CODEC_API void* TQX_appendEntry(const TQX_TypeLayout& type, const TQX_FieldLayout& field,
                                    void* record);

/// TQX_entrySize() for a sub-block type.
TQX_CODEC_API uint32_t TQX_entrySizeOf(const TQX_TypeLayout& type, unsigned revision);

/// TQX_release() for a record of that type.
TQX_CODEC_API void TQX_releaseAs(const TQX_TypeLayout& type, void* record);

} // namespace Kor::MessageApi
