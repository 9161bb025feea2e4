#include "tqx/log/record/RecordPlan.h"

#include "TQX_RecordAccess.h"
#include "tqx/log/record/Members.h"

#include <cstddef>
#include <utility>

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

/// Header and padding fields, shown only on request.
bool isFiller(const TQX_TypeLayout& type, const TQX_FieldLayout& field)
{
    if (field.isPadding)
        return true;
    return isHeaderField(type, field) && field.recordOffset != offsetof(TQX_MainHeader_s, TOW) &&
           field.recordOffset != offsetof(TQX_MainHeader_s, WNc);
}

bool isLeftOut(const TQX_TypeLayout& type, const TQX_FieldLayout& field, const FieldFilter& filter,
               ShownFields shown)
{
    switch (shown) {
    case ShownFields::All:
        return false;
    case ShownFields::OnWire:
        return field.kind == TQX_FieldKind::Bits || field.kind == TQX_FieldKind::Derived;
    case ShownFields::WithoutFiller:
        return filter.isEverything() && isFiller(type, field);
    case ShownFields::WithoutHeader:
        return filter.isEverything() && isHeaderField(type, field);
    }
    return false;
}

RecordPlan::Kind kindOf(const TQX_TypeLayout& type, const TQX_FieldLayout& member)
{
    if (member.kind == TQX_FieldKind::Blocks)
        return RecordPlan::Kind::Blocks;
    if (member.kind == TQX_FieldKind::Embedded)
        return RecordPlan::Kind::Embedded;
    if (isText(member))
        return RecordPlan::Kind::Text;
    const bool isSummary =
        member.kind == TQX_FieldKind::Bits && member.summary != TQX_Summary::None;
    return isNumber(isSummary ? type.fields[member.parent] : member) ? RecordPlan::Kind::Number
                                                                     : RecordPlan::Kind::Array;
}

} // namespace

bool isHeaderField(const TQX_TypeLayout& type, const TQX_FieldLayout& field)
{
    return type.blockNumber != 0 && field.recordOffset <= offsetof(TQX_MainHeader_s, WNc);
}

std::vector<RecordPlan::Input> findInputs(const TQX_TypeLayout& type, const TQX_FieldFacts& facts,
                                          const OwnerTypes& owners)
{
    std::vector<RecordPlan::Input> inputs;
    for (const TQX_FieldInput& input : TQX_inputs(facts)) {
        const size_t links = input.linksUp;
        if (links > owners.size())
            continue;
        const TQX_TypeLayout& owner = links == 0 ? type : *owners[owners.size() - links];
        inputs.push_back({input.linksUp, owner.fields + input.row, &TQX_factsOf(owner, input.row)});
    }
    return inputs;
}

RecordPlan planRecord(const TQX_TypeLayout& type, const FieldFilter& filter, ShownFields shown,
                      const OwnerTypes& owners)
{
    const std::vector<FieldFilter::Shown> chosen = filter.shownIn(type);
    OwnerTypes innerOwners = owners;
    innerOwners.push_back(&type);
    RecordPlan plan;
    plan.type = &type;
    plan.isWhole = chosen.size() == type.fieldCount;
    int lastRow = -1; // of the last member
    for (const auto [row, inside] : chosen) {
        const TQX_FieldLayout& field = type.fields[row];
        if (isLeftOut(type, field, filter, shown))
            continue;
        const int memberRow = isPartOfNumber(type, field) ? field.parent : row;
        if (memberRow != lastRow) {
            const TQX_FieldLayout& member = type.fields[memberRow];
            plan.members.push_back({&member,
                                    &TQX_factsOf(type, memberRow),
                                    kindOf(type, member),
                                    member.presence != TQX_Presence::Always,
                                    TQX_elementSize(member),
                                    {},
                                    nullptr});
            lastRow = memberRow;
        }
        RecordPlan::Member& member = plan.members.back();
        member.parts.push_back(
            {&field, &TQX_factsOf(type, row), findInputs(type, TQX_factsOf(type, row), owners)});
        if (field.recordType != 0) {
            member.plan =
                std::make_unique<RecordPlan>(planRecord(*field.sub, *inside, shown, innerOwners));
            plan.isWhole = plan.isWhole && member.plan->isWhole;
        }
    }
    return plan;
}

} // namespace tqx
