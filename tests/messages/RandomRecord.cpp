#include "RandomRecord.h"

#include "RecordMembers.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

using namespace Kor::MessageApi;

namespace
{

template<typename Bits, typename Real>
Bits bitsOf(Real value)
{
    static_assert(sizeof(Bits) == sizeof(Real));
    Bits bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

/// Random bits, or such as often mean "not available".
uint64_t randomValue(const TQX_FieldLayout& field, std::mt19937& generator)
{
    const bool isReal = field.type == TQX_MemberType::F32 || field.type == TQX_MemberType::F64;
    switch (generator() % 12) {
    case 0:
        return 0;
    case 1:
        return ~uint64_t{0};
    case 2:
        if (!isReal)
            return uint64_t{1} << (8 * TQX_elementSize(field) - 1);
        return field.type == TQX_MemberType::F32 ? bitsOf<uint32_t>(-2e10F)
                                                 : bitsOf<uint64_t>(-2e10);
    default:
        return uint64_t{generator()} << 32 | generator();
    }
}

/// A value for the count of an array of numbers or characters.
uint32_t randomCount(const TQX_TypeLayout& type, const TQX_FieldLayout& field,
                     std::mt19937& generator, Fill fill)
{
    const uint32_t unit = field.countsBytes ? TQX_elementSize(field) : 1;
    const uint32_t most =
        fill == Fill::Full ? field.elements : std::min<uint32_t>(field.elements, 60);
    const uint32_t count =
        fill == Fill::Full ? most : static_cast<uint32_t>(generator() % (most + 1));
    const uint32_t countSize = TQX_elementSize(type.fields[field.count]);
    return std::min(count * unit, countSize == 1 ? 255U : 65535U);
}

} // namespace

void select(const TQX_TypeLayout& type, int field, void* record)
{
    const TQX_FieldLayout& row = type.fields[field];
    writeUnsigned(type.fields[row.selector], record, 0, row.presenceValue);
}

void fillRandomly(const TQX_TypeLayout& type, void* record, std::mt19937& generator, Fill fill)
{
    const auto below = [&](uint32_t limit) { return static_cast<uint32_t>(generator() % limit); };
    const auto hasRecords = [](const TQX_FieldLayout& field) {
        return field.type == TQX_MemberType::Record;
    };
    for (unsigned i = 0; i < type.fieldCount; ++i) {
        const TQX_FieldLayout& field = type.fields[i];
        for (uint32_t k = 0; k < field.elements && !hasRecords(field); ++k)
            writeUnsigned(field, record, k, randomValue(field, generator));
    }
    for (unsigned i = 0; i < type.fieldCount; ++i) {
        const TQX_FieldLayout& field = type.fields[i];
        if (field.selector >= 0 && below(2) == 0)
            select(type, static_cast<int>(i), record);
        if (field.kind == TQX_FieldKind::Blocks) {
            writeUnsigned(type.fields[field.count], record, 0, 0);
        } else if (field.count >= 0 && field.kind != TQX_FieldKind::Bits) {
            writeUnsigned(type.fields[field.count], record, 0,
                          randomCount(type, field, generator, fill));
        }
    }
    for (unsigned i = 0; i < type.fieldCount; ++i) {
        const TQX_FieldLayout& field = type.fields[i];
        if (!hasRecords(field))
            continue;
        const TQX_TypeLayout& sub = *TQX_layout(field.recordType);
        if (field.kind == TQX_FieldKind::Embedded)
            fillRandomly(sub, TQX_element(field, record), generator, fill);
        const uint32_t elements = fill == Fill::Full ? 255 : below(4);
        for (uint32_t k = 0; field.kind == TQX_FieldKind::Blocks && k < elements; ++k)
            fillRandomly(sub, field.append(record), generator);
    }
}
