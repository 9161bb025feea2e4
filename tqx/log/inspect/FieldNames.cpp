#include "tqx/log/inspect/FieldNames.h"

#include "TQX_DescribedType.h"
#include "tqx/log/record/RecordPlan.h"
#include "tqx/log/record/TypeNames.h"
#include "tqx/log/value/FieldText.h"

#include <algorithm>
#include <cstring>

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

/// The first type that holds a sub-block; all of these have its inputs in the same place.
const TQX_TypeLayout* ownerOf(const TQX_TypeLayout& sub)
{
    const TQX_TypeLayout* owner = nullptr;
    const auto look = [&](const TQX_TypeLayout& type) {
        const bool isOwner = std::any_of(
            type.fields, type.fields + type.fieldCount,
            [&](const TQX_FieldLayout& field) { return field.recordType == sub.recordType; });
        if (isOwner && !owner)
            owner = &type;
    };
    if (sub.described) {
        for (size_t i = 0; i < sub.described->schemaSize; ++i)
            look(*sub.described->schema[i]);
    } else {
        forEachType(look);
    }
    return owner;
}

/// The enclosing types, outermost first.
OwnerTypes ownersOf(const TQX_TypeLayout& type)
{
    OwnerTypes owners;
    for (const TQX_TypeLayout* owner = &type; owner->blockNumber == 0;) {
        owner = ownerOf(*owner);
        if (!owner)
            break;
        owners.insert(owners.begin(), owner);
    }
    return owners;
}

} // namespace

std::vector<std::string> inputNames(const TQX_TypeLayout& type, const TQX_FieldFacts& field)
{
    std::vector<std::string> names;
    if (field.inputCount == 0)
        return names;
    const OwnerTypes owners = ownersOf(type);
    for (const RecordPlan::Input& input : findInputs(type, field, owners)) {
        names.emplace_back(input.field->name);
        if (input.linksUp != 0)
            names.back() += std::string(" of ") + owners[owners.size() - input.linksUp]->name;
    }
    return names;
}

std::string doNotUseText(const TQX_FieldLayout& layout, const TQX_FieldFacts& field)
{
    uint64_t word = TQX_doNotUse(field);
    const double real = TQX_realDoNotUse(field);
    if (layout.type == TQX_MemberType::F64)
        std::memcpy(&word, &real, sizeof word);
    if (layout.type == TQX_MemberType::F32) {
        const auto single = static_cast<float>(real);
        std::memcpy(&word, &single, sizeof single);
    }
    Buffer text;
    FieldText(layout, field, false, true).append(text, word);
    return std::string(text.view());
}

} // namespace tqx
