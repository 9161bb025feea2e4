#pragma once

#include "TQX_Layout.h"

#include <cstdint>

namespace Kor::MessageApi
{

/// Writes a main block's record as one framed block, every field of the type at every revision.
/// This is what the generated TQX_encode_<Name>() functions do; the record's Length, CRC,
/// sub-block lengths and count of bits are updated.
int32_t encodeRecord(const TQX_TypeLayout& type, unsigned char* buffer, uint16_t bufferSize,
                     void* record);

/// Bytes that encodeRecord() writes for one entry of a sub-block type, nested entries not counted.
uint32_t fullEntrySize(const TQX_TypeLayout& type);

} // namespace Kor::MessageApi

extern "C" {

/// Writes a main block's record with exactly the fields that decoding reads for its Revision and
/// its selecting fields, so that a decoded block comes back byte for byte. Entries shorter than
/// the sub-block length that the record holds are filled with zeros; Length and CRC are computed.
/// The record is not changed.
///
/// Returns the number of bits written, or the negative code of the last scalar field, or of the
/// array, that did not fit; then the buffer's content is unspecified. `record` must be a main
/// block's record, else the result is -6072 (TQX_ERR_INVALID_MESSAGE).
TQX_CODEC_API int32_t TQX_reencode(unsigned char* buffer, uint16_t bufferSize, const void* record);

/// Bytes that TQX_reencode() writes for one entry of a sub-block type under the given revision of
/// its main block, nested entries and content chosen by a selector not counted. This is the value
/// for the sub-block length field of a block built from scratch. 0 for an unknown type.
TQX_CODEC_API uint32_t TQX_entrySize(uint32_t recordType, unsigned revision);
}
