#pragma once

#include "ArrayStorage.h"
#include "TQX_DescribedType.h"
#include "TQX_RecordAccess.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

/// Members of a record reached by offset, for the table-driven parts of the codec.
namespace Kor::MessageApi
{

template<typename Value>
Value readMember(const void* record, size_t offset)
{
    Value value;
    std::memcpy(&value, static_cast<const uint8_t*>(record) + offset, sizeof value);
    return value;
}

template<typename Value>
void writeMember(void* record, size_t offset, Value value)
{
    std::memcpy(static_cast<uint8_t*>(record) + offset, &value, sizeof value);
}

inline uint32_t recordTypeOf(const void* record)
{
    return readMember<uint32_t>(record, offsetof(KorcgHeader_s, korcg_type));
}

/// Layout of a record that is in one block with a record of `type`.
inline const TQX_TypeLayout& layoutOf(const TQX_TypeLayout& type, const void* record)
{
    const uint32_t number = recordTypeOf(record);
    return type.described ? *type.described->schema[number - TQX_firstDescribedType]
                          : *TQX_layout(number);
}

inline void* fatherOf(const void* record)
{
    return readMember<void*>(record, offsetof(KorcgHeader_s, korcg_father));
}

inline void addBits(void* record, uint32_t bits)
{
    constexpr size_t at = offsetof(KorcgHeader_s, korcg_bits);
    writeMember<uint32_t>(record, at, readMember<uint32_t>(record, at) + bits);
}

/// Revision of a main block's record.
inline unsigned revisionOf(const void* main)
{
    return readMember<uint8_t>(main, offsetof(TQX_MainHeader_s, Revision));
}

/// The main block's record above a record (or the record itself), null when a link is missing.
inline const void* mainRecord(const TQX_TypeLayout& type, const void* record)
{
    for (unsigned links = type.linksToMain; links != 0 && record != nullptr; --links)
        record = fatherOf(record);
    return record;
}

/// Elements that the count field of a counted field or sub-block array announces.
inline uint32_t countOf(const TQX_TypeLayout& type, const TQX_FieldLayout& field,
                        const void* record)
{
    const auto count = static_cast<uint32_t>(TQX_unsignedValue(type.fields[field.count], record));
    return field.countsBytes ? count / TQX_elementSize(field) : count;
}

/// The storage flag directly follows the array pointer in every record.
inline ArrayStorage storageOf(const TQX_FieldLayout& field, const void* record)
{
    return readMember<ArrayStorage>(record, field.recordOffset + sizeof(void*));
}

inline void setArray(const TQX_FieldLayout& field, void* record, void* array, ArrayStorage storage)
{
    writeMember<void*>(record, field.recordOffset, array);
    writeMember<ArrayStorage>(record, field.recordOffset + sizeof(void*), storage);
}

inline void* arrayOf(const TQX_FieldLayout& field, const void* record)
{
    return readMember<void*>(record, field.recordOffset);
}

inline void writeUnsigned(const TQX_FieldLayout& field, void* record, uint32_t index,
                          uint64_t value)
{
    void* element = TQX_element(field, record, index);
    switch (TQX_elementSize(field)) {
    case 1:
        writeMember(element, 0, static_cast<uint8_t>(value));
        break;
    case 2:
        writeMember(element, 0, static_cast<uint16_t>(value));
        break;
    case 4:
        writeMember(element, 0, static_cast<uint32_t>(value));
        break;
    default:
        writeMember(element, 0, value);
        break;
    }
}

} // namespace Kor::MessageApi
