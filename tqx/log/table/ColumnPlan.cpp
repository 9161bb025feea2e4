#include "tqx/log/table/ColumnPlan.h"

#include "TQX_RecordAccess.h"
#include "tqx/log/record/Members.h"

#include <fmt/format.h>

#include <cstddef>

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

NumberPlace placeInRecord(const TQX_FieldLayout& field)
{
    const uint32_t size = TQX_elementSize(field);
    return {field.recordOffset, static_cast<uint8_t>(size), 0, static_cast<uint8_t>(size * 8),
            false};
}

/// Bit ranges are in the word that they are packed in.
NumberPlace placeInBlock(const TQX_TypeLayout& type, const TQX_FieldLayout& field)
{
    const bool isPacked = field.kind == TQX_FieldKind::Bits;
    const TQX_FieldLayout& word = isPacked ? type.fields[field.parent] : field;
    NumberPlace place = placeInRecord(word);
    place.offset = static_cast<uint32_t>(word.wireOffset);
    if (isPacked) {
        place.shift = field.shift;
        place.width = field.width;
        place.isSigned = TQX_isSigned(field);
    }
    return place;
}

NumberSource sourceOf(const TQX_FieldLayout& field, const TQX_FieldFacts& facts, bool hidesDoNotUse)
{
    NumberSource source;
    source.place = placeInRecord(field);
    source.size = TQX_elementSize(field);
    const bool isReal = field.type == TQX_MemberType::F32 || field.type == TQX_MemberType::F64;
    source.form = isReal                ? NumberSource::Form::Real
                  : TQX_isSigned(field) ? NumberSource::Form::Signed
                                        : NumberSource::Form::Unsigned;
    source.hasDoNotUse = hidesDoNotUse && facts.has(TQX_FieldFacts::HasDoNotUse);
    source.isWhole = facts.has(TQX_FieldFacts::Whole);
    source.doNotUse = TQX_doNotUse(facts);
    source.realDoNotUse = TQX_realDoNotUse(facts);
    return source;
}

const char* formatOf(TQX_MemberType type)
{
    switch (type) {
    case TQX_MemberType::U8:
        return "C";
    case TQX_MemberType::I8:
        return "c";
    case TQX_MemberType::U16:
        return "S";
    case TQX_MemberType::I16:
        return "s";
    case TQX_MemberType::U32:
        return "I";
    case TQX_MemberType::I32:
        return "i";
    case TQX_MemberType::U64:
        return "L";
    case TQX_MemberType::F32:
        return "f";
    case TQX_MemberType::F64:
        return "g";
    case TQX_MemberType::Char:
        return "u";
    case TQX_MemberType::Record:
        break;
    }
    return "+s";
}

ColumnPlan itemOf(ColumnPlan element)
{
    element.name = "item";
    element.metadata.clear();
    return element;
}

} // namespace

std::shared_ptr<const NameDictionary> ColumnPlanner::namesOf(const RecordPlan::Part& part)
{
    const TQX_FieldLayout& field = *part.field;
    const bool isCode = field.type != TQX_MemberType::Char && !TQX_isSigned(field) &&
                        field.width <= NameDictionary::widest;
    if (!m_options.isNamed || !isCode || TQX_namedValues(*part.facts).empty())
        return nullptr;
    const bool namesNone = part.facts->has(TQX_FieldFacts::NamesDoNotUse);
    const uint64_t none = namesNone ? TQX_doNotUse(*part.facts) + 1 : 0;
    const std::array<uint64_t, 3> key = {part.facts->namedValues, field.width, none};
    std::shared_ptr<const NameDictionary>& names = m_dictionaries[key];
    if (!names)
        names = std::make_shared<const NameDictionary>(*part.facts, field.width);
    return names;
}

void ColumnPlanner::planNumber(ColumnPlan& column, const RecordPlan::Part& part)
{
    const double factor = TQX_scale(*part.facts);
    column.source = sourceOf(*part.field, *part.facts, m_options.hidesDoNotUse);
    column.placeOnWire = placeInBlock(*column.type, *part.field);
    column.format = formatOf(part.field->type);
    column.names = namesOf(part);
    if (column.names) {
        column.format = column.names->getIndexSize() == 1 ? "c" : "s";
    } else if (m_options.isScaled && factor != 0) {
        column.scale.emplace(factor);
        column.format = "g";
    } else if (factor != 0) {
        column.metadata.emplace_back("scale", fmt::format("{}", factor));
    }
}

ColumnPlan ColumnPlanner::columnOf(const RecordPlan& plan, const RecordPlan::Member& member,
                                   const RecordPlan::Part& part)
{
    using Kind = ColumnPlan::Kind;
    const TQX_FieldLayout& field = *part.field;
    ColumnPlan column;
    column.name = field.name;
    column.type = plan.type;
    column.field = &field;
    if (const std::string_view unit = TQX_unit(*part.facts); !unit.empty())
        column.metadata.emplace_back("unit", unit);
    if (*field.meaning != 0)
        column.metadata.emplace_back("description", field.meaning);
    switch (member.kind) {
    case RecordPlan::Kind::Text:
        column.kind = Kind::Text;
        column.format = "u";
        break;
    case RecordPlan::Kind::Number:
        if (field.type == TQX_MemberType::Char) {
            column.kind = Kind::Text;
            column.format = "u";
            break;
        }
        planNumber(column, part);
        if (m_options.hidesDoNotUse) {
            for (const RecordPlan::Input& input : part.inputs) {
                column.inputs.push_back(
                    {input.linksUp, sourceOf(*input.field, *input.facts, true)});
            }
        }
        break;
    case RecordPlan::Kind::Array: {
        planNumber(column, part);
        const bool isCounted = field.count >= 0 || (field.kind == TQX_FieldKind::Bits &&
                                                    plan.type->fields[field.parent].count >= 0);
        ColumnPlan list = column;
        list.kind = isCounted ? Kind::List : Kind::FixedList;
        list.format = isCounted ? "+l" : fmt::format("+w:{}", field.elements);
        list.wireStride = column.placeOnWire.wordSize;
        list.names = nullptr;
        list.children.push_back(itemOf(std::move(column)));
        return list;
    }
    case RecordPlan::Kind::Embedded:
    case RecordPlan::Kind::Blocks: {
        std::vector<ColumnPlan> fields = columnsOf(*member.plan);
        column.kind = Kind::Struct;
        column.format = "+s";
        column.children = std::move(fields);
        if (member.kind == RecordPlan::Kind::Embedded)
            break;
        ColumnPlan list = column;
        list.kind = Kind::Blocks;
        list.format = "+l";
        list.children.clear();
        list.children.push_back(itemOf(std::move(column)));
        list.children.front().isNullable = false;
        return list;
    }
    }
    return column;
}

std::vector<ColumnPlan> ColumnPlanner::columnsOf(const RecordPlan& plan, uint32_t towcOnWire)
{
    std::vector<ColumnPlan> columns;
    for (const RecordPlan::Member& member : plan.members) {
        for (const RecordPlan::Part& part : member.parts) {
            columns.push_back(columnOf(plan, member, part));
            if (isContinuousTime(*part.field)) {
                columns.back().placeOnWire.offset = towcOnWire;
                columns.back().source.hasDoNotUse = m_options.hidesDoNotUse;
                columns.back().source.doNotUse = noContinuousTime;
            }
        }
    }
    return columns;
}

} // namespace tqx
