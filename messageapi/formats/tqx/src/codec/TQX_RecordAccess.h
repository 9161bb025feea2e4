#pragma once

#include "TQX_Layout.h"

#include <cstdint>

/// Generic access to records through the layout table. Nothing here allocates or throws; a
/// record must be one of the type that the layout describes.
namespace Kor::MessageApi
{

/// Bookkeeping head of every record, the view that TQX_AS_KORCG_HEADER gives.
struct KorcgHeader_s {
    uint32_t korcg_type; ///< record-type number
    uint32_t korcg_bits; ///< bits consumed by decoding or encoding
    void* korcg_father;  ///< record that contains this one, null for a main block
};

/// Head of every main block's record.
struct TQX_MainHeader_s {
    uint32_t korcg_type;
    uint32_t korcg_bits;
    void* korcg_father;
    char Sync1;
    char Sync2;
    uint16_t CRC;
    uint16_t ID;
    uint16_t BlockNumber; ///< ID bits 0 to 12
    uint8_t Revision;     ///< ID bits 13 to 15
    uint16_t Length;      ///< bytes of the whole block
    uint32_t TOW;         ///< milliseconds of the week, all ones: do not use
    uint32_t TOWc;        ///< milliseconds across week rollovers, all ones: unset
    uint16_t WNc;         ///< week number, 65535: do not use
};

/// Address of element `index` of a member. For Blocks it is the sub-record in the heap array.
TQX_CODEC_API const void* TQX_element(const TQX_FieldLayout& field, const void* record,
                                      uint32_t index = 0);
TQX_CODEC_API void* TQX_element(const TQX_FieldLayout& field, void* record, uint32_t index = 0);

/// Size of one element of a member in bytes.
TQX_CODEC_API uint32_t TQX_elementSize(const TQX_FieldLayout& field);

/// Whether the record carries the field. A sub-block's revision is that of its main block; with
/// a null parent link on the way there a revision-dependent field is absent.
TQX_CODEC_API bool TQX_isPresent(const TQX_TypeLayout& type, const TQX_FieldLayout& field,
                                 const void* record);

/// Number of elements as getNumberOf<F>() gives it: text counts its terminating zero, a counted
/// field and a sub-block array the value of the count field, everything else `elements`.
/// Presence does not matter.
TQX_CODEC_API uint32_t TQX_elementCount(const TQX_TypeLayout& type, const TQX_FieldLayout& field,
                                        const void* record);

/// Value of element `index` of an unsigned or character member, zero-extended.
TQX_CODEC_API uint64_t TQX_unsignedValue(const TQX_FieldLayout& field, const void* record,
                                         uint32_t index = 0);

/// Value of element `index` of a signed member, sign-extended.
TQX_CODEC_API int64_t TQX_signedValue(const TQX_FieldLayout& field, const void* record,
                                      uint32_t index = 0);

/// Whether a member holds a signed integer.
inline bool TQX_isSigned(const TQX_FieldLayout& field)
{
    return field.type == TQX_MemberType::I8 || field.type == TQX_MemberType::I16 ||
           field.type == TQX_MemberType::I32;
}

} // namespace Kor::MessageApi
