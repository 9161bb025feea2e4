#pragma once

#include "TQX_RecordAccess.h"
#include "tqx/log/select/FieldPath.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tqx
{

/// How many values a record has of a field.
inline uint32_t countOf(const FieldOfType& field, const void* record)
{
    using namespace Kor::MessageApi;
    const TQX_FieldLayout& layout = *field.layout;
    if (layout.presence != TQX_Presence::Always && !TQX_isPresent(*field.type, layout, record))
        return 0;
    return field.facts().has(TQX_FieldFacts::Repeated)
               ? TQX_elementCount(*field.type, layout, record)
               : 1;
}

/// Whether `test` holds for at least one of the sub-block records that `fields` lead to from
/// `record`; the first of these sub-block fields belongs to the record's own type.
template<typename Test>
bool anyElement(const std::vector<FieldOfType>& fields, const void* record, const Test& test,
                size_t first = 0)
{
    if (first == fields.size())
        return test(record);
    const uint32_t count = countOf(fields[first], record);
    for (uint32_t i = 0; i < count; ++i) {
        const void* element = TQX_element(*fields[first].layout, record, i);
        if (anyElement(fields, element, test, first + 1))
            return true;
    }
    return false;
}

} // namespace tqx
