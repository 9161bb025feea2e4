#pragma once

#include "TQX_Layout.h"

#include <cstdint>

namespace Kor::MessageApi
{

/// Writes a main block's record as one framed block, every field that the type began with at every
/// revision, and those that later editions added at theirs.
/// This is what the generated TQX_encode_<Name>() functions do; the record's Length, CRC,
/// sub-block lengths and count of bits are updated.
int32_t encodeRecord(const TQX_TypeLayout& type, unsigned char* buffer, uint16_t bufferSize,
                     void* record);

/// Bytes that encodeRecord() writes for one entry of a sub-block type in a block of that revision,
/// nested entries not counted.
uint32_t fullEntrySize(const TQX_TypeLayout& type, unsigned revision);

} // namespace Kor::MessageApi
