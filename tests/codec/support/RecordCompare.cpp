#include "RecordCompare.h"

#include "FieldRoles.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace
{

using namespace Kor::MessageApi;

// The counted field that a member belongs to, or null.
const TQX_FieldLayout* countedField(const TQX_TypeLayout& type, const TQX_FieldLayout& field)
{
    const TQX_FieldLayout& whole =
        field.kind == TQX_FieldKind::Bits ? type.fields[field.parent] : field;
    return whole.count >= 0 ? &whole : nullptr;
}

bool isCompared(const TQX_TypeLayout& type, const TQX_FieldLayout& field, const void* one,
                Compared compared)
{
    if (compared != Compared::WireFields)
        return true;
    // CRC, ID and Length are the encoder's; what the ID holds is in members of its own.
    const bool isFrame =
        type.linksToMain == 0 && field.wireOffset >= 2 && field.wireOffset < 8 && isOnWire(field);
    return isOnWire(field) && !isFrame && !field.isPadding &&
           (field.alwaysSent || TQX_isPresent(type, field, one)) &&
           (field.kind != TQX_FieldKind::Value ||
            roleOf(type, static_cast<int>(&field - type.fields)).sized == nullptr);
}

// Elements of a member; a payload that is counted in bytes may end inside the next one.
uint32_t elementsOf(const TQX_TypeLayout& type, const TQX_FieldLayout& field, const void* record,
                    Compared compared)
{
    const TQX_FieldLayout* counted = countedField(type, field);
    const bool isText =
        field.kind == TQX_FieldKind::Text || field.kind == TQX_FieldKind::CountedText;
    const uint32_t zero = isText && compared != Compared::WireFields ? 1 : 0;
    if (counted == nullptr)
        return field.elements + zero;
    if (compared == Compared::Whole && counted->kind != TQX_FieldKind::Blocks)
        return counted->elements + (isText || counted->countsBytes ? 1U : 0U);
    const auto count =
        static_cast<uint32_t>(TQX_unsignedValue(type.fields[counted->count], record));
    const uint32_t elements = counted->countsBytes ? count / TQX_elementSize(*counted) : count;
    // Elements beyond the capacity are not kept.
    return (counted->kind == TQX_FieldKind::Blocks
                ? elements
                : std::min<uint32_t>(elements, counted->elements)) +
           zero;
}

bool sameTail(const TQX_TypeLayout& type, const TQX_FieldLayout& field, const void* one,
              const void* other, uint32_t index)
{
    // What is split from a word is split from whole words only.
    if (!field.countsBytes || field.kind == TQX_FieldKind::Bits || index >= field.elements)
        return true;
    const uint64_t bits =
        TQX_unsignedValue(type.fields[field.count], one) % TQX_elementSize(field) * 8;
    const uint64_t mask = ~(~uint64_t{0} << bits);
    return ((TQX_unsignedValue(field, one, index) ^ TQX_unsignedValue(field, other, index)) &
            mask) == 0;
}

// Computing with one that is no number yields one, but not always the same one.
bool isNoNumber(const TQX_FieldLayout& field, const void* record)
{
    if (field.kind != TQX_FieldKind::Derived || field.type != TQX_MemberType::F64)
        return false;
    double value;
    std::memcpy(&value, TQX_element(field, record), sizeof value);
    return std::isnan(value);
}

} // namespace

std::string firstDifference(const TQX_TypeLayout& type, const void* one, const void* other,
                            Compared compared)
{
    const auto& head = *static_cast<const KorcgHeader_s*>(one);
    const auto& otherHead = *static_cast<const KorcgHeader_s*>(other);
    if (head.korcg_type != otherHead.korcg_type)
        return std::string(type.name) + "::korcg_type";
    if (compared != Compared::WireFields && head.korcg_bits != otherHead.korcg_bits)
        return std::string(type.name) + "::korcg_bits";
    for (int row = 0; row < type.fieldCount; ++row) {
        const TQX_FieldLayout& field = type.fields[row];
        if (!isCompared(type, field, one, compared))
            continue;
        const uint32_t count = elementsOf(type, field, one, compared);
        if (isNoNumber(field, one) && isNoNumber(field, other))
            continue;
        if (!holdsEntries(field)) {
            if (std::memcmp(TQX_element(field, one), TQX_element(field, other),
                            size_t{count} * TQX_elementSize(field)) != 0 ||
                !sameTail(type, field, one, other, count))
                return std::string(type.name) + "::" + field.name;
            continue;
        }
        if (count != elementsOf(type, field, other, compared))
            return std::string(type.name) + "::" + field.name;
        // A decode that failed may not have come to the array.
        const bool missing = TQX_element(field, one) == nullptr;
        if (missing != (TQX_element(field, other) == nullptr))
            return std::string(type.name) + "::" + field.name;
        if (missing)
            continue;
        if (field.kind == TQX_FieldKind::Embedded && !TQX_isPresent(type, field, one) &&
            compared == Compared::WireFields)
            continue;
        for (uint32_t i = 0; i < count; ++i) {
            const std::string difference =
                firstDifference(*TQX_layout(field.recordType), TQX_element(field, one, i),
                                TQX_element(field, other, i), compared);
            if (!difference.empty())
                return difference;
        }
    }
    return {};
}
