#pragma once

#include "TQX_Layout.h"

#include <cstdint>

// A record of any type may be accessed through its head.
#if defined(__GNUC__)
#define TQX_MAY_ALIAS __attribute__((may_alias))
#else
#define TQX_MAY_ALIAS
#endif

/// Generic access to records through the layout table. Nothing here allocates or throws; a
/// record must be one of the type that the layout describes.
namespace Kor::MessageApi
{

/// Bookkeeping head of every record, the view that TQX_AS_KORCG_HEADER gives.
struct TQX_MAY_ALIAS KorcgHeader_s {
    uint32_t korcg_type; ///< record-type number
    uint32_t korcg_bits; ///< bits consumed by decoding or encoding
    void* korcg_father;  ///< record that contains this one, null for a main block
};

/// Head of every main block's record.
struct TQX_MAY_ALIAS TQX_MainHeader_s {
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

/// What TQX_AS_KORCG_HEADER expands to.
inline const KorcgHeader_s* TQX_korcgHeader(const void* record)
{
    return static_cast<const KorcgHeader_s*>(record);
}
inline KorcgHeader_s* TQX_korcgHeader(void* record)
{
    return static_cast<KorcgHeader_s*>(record);
}

/// What TQX_IS_BLOCK_HEADER expands to.
inline bool TQX_isBlockHeader(const void* record)
{
    const TQX_TypeLayout* type = TQX_layout(TQX_korcgHeader(record)->korcg_type);
    return type != nullptr && type->blockNumber != 0;
}

/// Address of element `index` of a member. For Blocks it is the sub-record in the heap array.
TQX_CODEC_API const void* TQX_element(const TQX_FieldLayout& field, const void* record,
                                      uint32_t index = 0);
TQX_CODEC_API void* TQX_element(const TQX_FieldLayout& field, void* record, uint32_t index = 0);

/// Size of one element of a member in bytes.
TQX_CODEC_API uint32_t TQX_elementSize(const TQX_FieldLayout& field);

/// Whether the record carries the field. A sub-block's revision is that of its main block; with a
/// null parent link on the way, a revision-dependent field is absent.
TQX_CODEC_API bool TQX_isPresent(const TQX_TypeLayout& type, const TQX_FieldLayout& field,
                                 const void* record);

/// Number of elements as getNumberOf<F>() gives it: `elements`, but of a counted array of numbers
/// as many as the count field says and there is room for, of a sub-block array what the count field
/// says. Text counts its terminating zero; a counted one follows its count field, which may exceed
/// the room in a record that was filled by hand. Presence does not matter.
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

/// Views any record through the bookkeeping members at its head. Takes a pointer to a record of
/// any type, or to void, const or not; the view is const when the record is. The pointer is only
/// converted: it may be null.
#define TQX_AS_KORCG_HEADER(record) (Kor::MessageApi::TQX_korcgHeader(record))

/// Whether a record is a main block's, so that it starts with a TQX_MainHeader_s. Takes what
/// TQX_AS_KORCG_HEADER takes, but not null.
#define TQX_IS_BLOCK_HEADER(record) (Kor::MessageApi::TQX_isBlockHeader(record))
