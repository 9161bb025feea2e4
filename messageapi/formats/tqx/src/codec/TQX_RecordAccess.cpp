#include "TQX_RecordAccess.h"

#include "RecordMembers.h"

#include <algorithm>

namespace Kor::MessageApi
{

namespace
{

// In the order of TQX_MemberType. A table, since the type changes from field to field and a jump
// that follows it is guessed wrong.
constexpr uint8_t memberSizes[] = {1, 1, 2, 2, 4, 4, 8, 4, 8, 1};
static_assert(sizeof memberSizes == static_cast<size_t>(TQX_MemberType::Record));

} // namespace

uint32_t TQX_elementSize(const TQX_FieldLayout& field)
{
    return field.type == TQX_MemberType::Record ? field.sub->recordSize
                                                : memberSizes[static_cast<size_t>(field.type)];
}

const void* TQX_element(const TQX_FieldLayout& field, const void* record, uint32_t index)
{
    const uint8_t* member = static_cast<const uint8_t*>(record) + field.recordOffset;
    if (field.kind == TQX_FieldKind::Blocks)
        member = static_cast<const uint8_t*>(arrayOf(field, record));
    return index == 0 ? member : member + size_t{index} * TQX_elementSize(field);
}

void* TQX_element(const TQX_FieldLayout& field, void* record, uint32_t index)
{
    return const_cast<void*>(TQX_element(field, static_cast<const void*>(record), index));
}

bool TQX_isPresent(const TQX_TypeLayout& type, const TQX_FieldLayout& field, const void* record)
{
    switch (field.presence) {
    case TQX_Presence::Always:
        return true;
    case TQX_Presence::Selected:
        return TQX_unsignedValue(type.fields[field.selector], record) == field.presenceValue;
    case TQX_Presence::SinceRevision:
    case TQX_Presence::OnlyRevision:
        break;
    }
    const void* main = mainRecord(type, record);
    if (main == nullptr)
        return false;
    const unsigned revision = revisionOf(main);
    return field.presence == TQX_Presence::SinceRevision ? revision >= field.presenceValue
                                                         : revision == field.presenceValue;
}

uint32_t TQX_elementCount(const TQX_TypeLayout& type, const TQX_FieldLayout& field,
                          const void* record)
{
    switch (field.kind) {
    case TQX_FieldKind::Text:
        return field.elements + 1U;
    case TQX_FieldKind::CountedText:
        return countOf(type, field, record) + 1U;
    case TQX_FieldKind::CountedArray:
        return std::min<uint32_t>(countOf(type, field, record), field.elements);
    case TQX_FieldKind::Blocks:
        return countOf(type, field, record);
    case TQX_FieldKind::Bits: {
        const TQX_FieldLayout& word = type.fields[field.parent];
        return word.kind == TQX_FieldKind::CountedArray ? TQX_elementCount(type, word, record)
                                                        : field.elements;
    }
    case TQX_FieldKind::Value:
    case TQX_FieldKind::Derived:
    case TQX_FieldKind::Array:
    case TQX_FieldKind::Embedded:
        break;
    }
    return field.elements;
}

uint64_t TQX_unsignedValue(const TQX_FieldLayout& field, const void* record, uint32_t index)
{
    const void* element = TQX_element(field, record, index);
    switch (TQX_elementSize(field)) {
    case 1:
        return readMember<uint8_t>(element, 0);
    case 2:
        return readMember<uint16_t>(element, 0);
    case 4:
        return readMember<uint32_t>(element, 0);
    default:
        return readMember<uint64_t>(element, 0);
    }
}

int64_t TQX_signedValue(const TQX_FieldLayout& field, const void* record, uint32_t index)
{
    const void* element = TQX_element(field, record, index);
    switch (TQX_elementSize(field)) {
    case 1:
        return readMember<int8_t>(element, 0);
    case 2:
        return readMember<int16_t>(element, 0);
    default:
        return readMember<int32_t>(element, 0);
    }
}

} // namespace Kor::MessageApi
