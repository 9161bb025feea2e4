#include "RandomRecord.h"

#include "TQX_RecordAccess.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

using namespace Kor::MessageApi;

namespace
{

void store(const TQX_FieldLayout& field, void* record, uint32_t index, uint64_t value)
{
    void* element = TQX_element(field, record, index);
    const auto narrow = [&](auto number) { std::memcpy(element, &number, sizeof number); };
    switch (TQX_elementSize(field)) {
    case 1:
        narrow(static_cast<uint8_t>(value));
        break;
    case 2:
        narrow(static_cast<uint16_t>(value));
        break;
    case 4:
        narrow(static_cast<uint32_t>(value));
        break;
    default:
        narrow(value);
        break;
    }
}

} // namespace

void fillRandomly(const TQX_TypeLayout& type, void* record, std::mt19937& generator)
{
    const auto below = [&](uint32_t limit) { return static_cast<uint32_t>(generator() % limit); };
    const auto hasRecords = [](const TQX_FieldLayout& field) {
        return field.type == TQX_MemberType::Record;
    };
    for (unsigned i = 0; i < type.fieldCount; ++i) {
        const TQX_FieldLayout& field = type.fields[i];
        for (uint32_t k = 0; k < field.elements && !hasRecords(field); ++k)
            store(field, record, k, uint64_t{generator()} << 32 | generator());
    }
    for (unsigned i = 0; i < type.fieldCount; ++i) {
        const TQX_FieldLayout& field = type.fields[i];
        if (field.selector >= 0 && below(2) == 0)
            store(type.fields[field.selector], record, 0, field.presenceValue);
        if (field.kind == TQX_FieldKind::Blocks)
            store(type.fields[field.count], record, 0, 0);
        else if (field.count >= 0 && field.kind != TQX_FieldKind::Bits)
            store(type.fields[field.count], record, 0,
                  below(std::min<uint32_t>(field.elements, 60) + 1));
    }
    for (unsigned i = 0; i < type.fieldCount; ++i) {
        const TQX_FieldLayout& field = type.fields[i];
        if (!hasRecords(field))
            continue;
        const TQX_TypeLayout& sub = *TQX_layout(field.recordType);
        if (field.kind == TQX_FieldKind::Embedded)
            fillRandomly(sub, TQX_element(field, record), generator);
        for (uint32_t k = below(4); field.kind == TQX_FieldKind::Blocks && k > 0; --k)
            fillRandomly(sub, field.append(record), generator);
    }
}
