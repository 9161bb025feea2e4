#include "tqx/log/write/CsvTable.h"

#include "tqx/log/record/MemberReader.h"
#include "tqx/log/text/CsvText.h"
#include "tqx/log/text/NumberText.h"
#include "tqx/log/text/TextCache.h"
#include "tqx/log/value/ShownValue.h"

#include <cstddef>
#include <utility>

namespace tqx
{

using namespace Kor::MessageApi;

/// What to write of one member.
struct CsvTable::Step {
    MemberReader member;
    TextCache cache;                ///< of a number
    std::vector<ShownValue> values; ///< a cell each for a number; one for elements
    std::string empty;              ///< the cells when the field is absent
    std::unique_ptr<CsvTable> embedded;
};

namespace
{

/// Elements of an array share one cell, which is quoted as a whole.
std::string unquoted(std::string_view characters)
{
    return std::string(characters);
}

/// Week and time of week.
bool isInKey(const TQX_TypeLayout& type, const TQX_FieldLayout& field)
{
    return isHeaderField(type, field) && (field.recordOffset == offsetof(TQX_MainHeader_s, TOW) ||
                                          field.recordOffset == offsetof(TQX_MainHeader_s, WNc));
}

} // namespace

CsvTable::CsvTable(const TQX_TypeLayout& type, const FieldFilter& shown, const CsvStyle& style)
    : CsvTable(planRecord(type, shown, ShownFields::WithoutFiller), style, type, {})
{
    m_showsKey = m_showsKey && !shown.isEverything();
}

CsvTable::CsvTable(const RecordPlan& plan, const CsvStyle& style, const TQX_TypeLayout& main,
                   const RowCondition::Path& path)
    : m_type(*plan.type), m_style(style),
      m_tests(style.rows ? style.rows->find(main, path) : nullptr)
{
    for (const RecordPlan::Member& member : plan.members) {
        if (isInKey(m_type, *member.field)) {
            m_showsKey = true;
        } else {
            add(plan, member, main, path);
        }
    }
}

CsvTable::~CsvTable() = default;

void CsvTable::add(const RecordPlan& plan, const RecordPlan::Member& member,
                   const TQX_TypeLayout& main, const RowCondition::Path& path)
{
    const TQX_FieldLayout& field = *member.field;
    std::unique_ptr<CsvTable> table;
    if (member.plan) {
        RowCondition::Path inner = path;
        inner.push_back(&field);
        table.reset(new CsvTable(*member.plan, m_style, main, inner));
    }
    if (member.kind == RecordPlan::Kind::Blocks) {
        if (!table->m_columns.empty() || !table->m_children.empty())
            m_children.push_back({MemberReader(plan, member), std::move(table)});
        return;
    }
    m_steps.push_back({MemberReader(plan, member), {}, {}, {}, std::move(table)});
    Step& step = m_steps.back();
    if (!step.embedded)
        return addCells(step, member.parts);
    for (const std::string& column : step.embedded->m_columns)
        m_columns.push_back(std::string(field.name) + '.' + column);
    step.empty.assign(step.embedded->m_columns.size(), ',');
}

void CsvTable::addCells(Step& step, const std::vector<RecordPlan::Part>& parts)
{
    const bool isArray = step.member.getKind() == RecordPlan::Kind::Array;
    const bool isGuarded = m_style.isSafe && !isArray;
    const Notation notation = {"", isArray ? unquoted : csv::cell,
                               isGuarded ? csv::appendGuardedLatin1 : csv::appendLatin1,
                               m_style.values.isStored};
    for (const RecordPlan::Part& part : parts) {
        step.values.emplace_back(*part.field, *part.facts, part.field != &step.member.getField(),
                                 notation, m_style.values);
        std::string name = part.field->name;
        if (const std::string_view unit = shownUnit(*part.facts, m_style.values); !unit.empty())
            name += " [" + std::string(unit) + "]";
        m_columns.push_back(name);
    }
    step.empty.assign(parts.size(), ',');
}

inline void CsvTable::appendNumber(Buffer& out, Step& step, const void* record) const
{
    if (!m_style.values.isStored && !step.member.isAvailable(record))
        return out.append(step.empty);
    const uint64_t word = step.member.getWord(record);
    step.cache.append(out, word, [&step, word](Buffer& to) {
        for (const ShownValue& value : step.values) {
            to.append(',');
            value.append(to, word);
        }
    });
}

void CsvTable::appendCells(Buffer& out, const void* record)
{
    for (Step& step : m_steps) {
        if (!step.member.isPresent(record)) {
            out.append(step.empty);
        } else if (step.member.isNumber()) {
            appendNumber(out, step, record);
        } else {
            appendOther(out, step, record);
        }
    }
}

void CsvTable::appendOther(Buffer& out, Step& step, const void* record) const
{
    switch (step.member.getKind()) {
    case RecordPlan::Kind::Text: {
        const std::string_view text = step.member.getText(record);
        out.append(',');
        return (m_style.isSafe ? csv::appendGuardedLatin1 : csv::appendLatin1)(out, text.data(),
                                                                               text.size());
    }
    case RecordPlan::Kind::Embedded:
        return step.embedded->appendCells(out, step.member.getElements(record));
    case RecordPlan::Kind::Number:
    case RecordPlan::Kind::Array:
    case RecordPlan::Kind::Blocks:
        break;
    }
    out.append(',');
    const size_t start = out.size();
    const uint32_t count = step.member.countElements(record);
    const uint32_t stride = step.member.getStride();
    const char* element = step.member.getElements(record);
    const bool isWhole = step.member.isWhole(record);
    for (uint32_t i = 0; i < count; ++i, element += stride) {
        if (i != 0)
            out.append(';');
        if (isWhole) {
            number::appendUnsigned(out, loadWord(element, stride));
        } else {
            step.values.front().append(out, loadWord(element, stride));
        }
    }
    if (m_style.isSafe && step.member.getField().type == TQX_MemberType::Char)
        csv::guardFrom(out, start);
    csv::quoteFrom(out, start);
}

} // namespace tqx
