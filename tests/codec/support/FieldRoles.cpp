#include "FieldRoles.h"

using namespace Kor::MessageApi;

namespace
{

// The length of nested entries is in the main block.
const TQX_FieldLayout* nestedSizedBy(const TQX_TypeLayout& sub, int row)
{
    for (int i = 0; i < sub.fieldCount; ++i) {
        if (sub.fields[i].lengthInMain && sub.fields[i].length == row)
            return &sub.fields[i];
    }
    return nullptr;
}

uint32_t roomOf(const TQX_FieldLayout& field)
{
    return field.elements * TQX_elementSize(field);
}

std::vector<const TQX_TypeLayout*> layouts(bool mainsOnly)
{
    std::vector<const TQX_TypeLayout*> types;
    for (uint32_t record = 1; record <= TQX_lastRecordType; ++record) {
        if (const TQX_TypeLayout* type = TQX_layout(record);
            type != nullptr && (!mainsOnly || type->blockNumber != 0))
            types.push_back(type);
    }
    return types;
}

FieldRole findRole(const TQX_TypeLayout& type, int row)
{
    FieldRole role;
    for (int i = 0; i < type.fieldCount; ++i) {
        const TQX_FieldLayout& other = type.fields[i];
        if (other.count == row &&
            (role.counted == nullptr || roomOf(other) > roomOf(*role.counted)))
            role.counted = &other;
        if (other.length == row && !other.lengthInMain)
            role.sized = &other;
        if (role.sized == nullptr && other.kind == TQX_FieldKind::Blocks && type.linksToMain == 0)
            role.sized = nestedSizedBy(*TQX_layout(other.recordType), row);
        if (other.presence != TQX_Presence::Selected)
            continue;
        const TQX_FieldLayout& selector = type.fields[other.selector];
        if (other.selector == row || selector.parent == row) {
            role.choices.push_back({(~uint64_t{0} >> (64U - selector.width)) << selector.shift,
                                    uint64_t{other.presenceValue} << selector.shift});
        }
    }
    return role;
}

std::vector<std::vector<FieldRole>> allRoles()
{
    std::vector<std::vector<FieldRole>> roles(TQX_lastRecordType + 1);
    for (const TQX_TypeLayout* type : allTypes()) {
        for (int row = 0; row < type->fieldCount; ++row)
            roles[type->recordType].push_back(findRole(*type, row));
    }
    return roles;
}

} // namespace

const FieldRole& roleOf(const TQX_TypeLayout& type, int row)
{
    static const std::vector<std::vector<FieldRole>> roles = allRoles();
    return roles[type.recordType][static_cast<size_t>(row)];
}

const std::vector<const TQX_TypeLayout*>& allTypes()
{
    static const std::vector<const TQX_TypeLayout*> types = layouts(false);
    return types;
}

const std::vector<const TQX_TypeLayout*>& mainTypes()
{
    static const std::vector<const TQX_TypeLayout*> types = layouts(true);
    return types;
}

const TQX_TypeLayout* ownerOf(const TQX_TypeLayout& type)
{
    for (const TQX_TypeLayout* owner : allTypes()) {
        for (int i = 0; i < owner->fieldCount; ++i) {
            if (owner->fields[i].recordType == type.recordType && holdsEntries(owner->fields[i]))
                return owner;
        }
    }
    return nullptr;
}
