#include "tqx/log/sqlite/SqlCells.h"

#include "TQX_RecordAccess.h"
#include "tqx/log/record/Members.h"
#include "tqx/log/text/JsonText.h"
#include "tqx/log/text/Latin1.h"
#include "tqx/log/text/NumberText.h"

#include <utility>

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

/// Appends a Latin-1 character in UTF-8.
void appendLatin1(std::string& text, unsigned char character)
{
    constexpr unsigned char firstOfTwo = 0x80;
    if (character < firstOfTwo) {
        text += static_cast<char>(character);
        return;
    }
    text += static_cast<char>(0xc0U | character >> 6U);
    text += static_cast<char>(0x80U | (character & 0x3fU));
}

std::string asItIs(std::string_view characters)
{
    return std::string(characters);
}

Notation cellNotation(bool isStored)
{
    return {"", asItIs, nullptr, isStored};
}

Notation arrayNotation(bool isStored)
{
    return {"null", json::text, json::appendLatin1, isStored};
}

} // namespace

int SqlColumns::add(SqlColumn column)
{
    column.name = m_names.take(column.name);
    m_columns.push_back(std::move(column));
    return static_cast<int>(m_columns.size());
}

SqlNumber::SqlNumber(const RecordPlan::Part& part, bool isPart, bool isStored)
    : m_bits(*part.field, isPart), m_names(*part.field, *part.facts, cellNotation(isStored)),
      m_isWide(part.field->type == TQX_MemberType::U64 && !isPart), m_factor(TQX_scale(*part.facts))
{
    if (isStored)
        return;
    m_hasNames = !m_bits.isReal() && !TQX_namedValues(*part.facts).empty();
    m_isTime = isContinuousTime(*part.field);
    if (m_factor != 0)
        m_scale.emplace(m_factor);
    if (m_bits.isReal() && part.facts->has(TQX_FieldFacts::HasDoNotUse))
        m_notAvailable = TQX_realDoNotUse(*part.facts);
}

const char* SqlNumber::getType() const
{
    if (m_hasNames || m_bits.isCharacter())
        return "TEXT";
    if (m_scale || m_bits.isReal())
        return "REAL";
    // SQLite would turn a text of digits into a rounded number in a column of integers.
    return m_isWide ? "" : "INTEGER";
}

void SqlNumber::setReal(SqlInsert& row, int parameter, double value) const
{
    if (!m_notAvailable || value != *m_notAvailable)
        row.setReal(parameter, m_scale ? m_scale->apply(value) : value);
}

void SqlNumber::setInteger(SqlInsert& row, int parameter, uint64_t value, std::string& text) const
{
    if (const std::string* name = m_names.find(value)) {
        if (!name->empty())
            row.setText(parameter, *name);
        return;
    }
    if (m_isTime && value == noContinuousTime)
        return;
    const auto number = static_cast<int64_t>(value);
    const bool isTooBig = !m_bits.isSigned() && number < 0;
    if (m_scale) {
        return row.setReal(parameter, m_scale->apply(isTooBig ? static_cast<double>(value)
                                                              : static_cast<double>(number)));
    }
    if (!isTooBig)
        return row.setInteger(parameter, number);
    text = std::to_string(value);
    row.setText(parameter, text);
}

void SqlNumber::set(SqlInsert& row, int parameter, uint64_t word, std::string& text) const
{
    if (m_bits.isReal())
        return setReal(row, parameter, m_bits.real(word));
    if (!m_bits.isCharacter())
        return setInteger(row, parameter, m_bits.integer(word), text);
    text.clear();
    if (const auto character = static_cast<unsigned char>(word); character != 0)
        appendLatin1(text, character);
    row.setText(parameter, text);
}

struct SqlCells::Step {
    struct Cell {
        SqlNumber number;
        int parameter;
        std::string text;
    };

    const RecordPlan::Member* member;
    const TQX_FieldFacts* needed = nullptr; ///< of a number that others must be available for
    std::deque<Cell> cells;                 ///< of a number
    int parameter = 0;                      ///< of a text or an array
    std::string text;                       ///< of those
    std::optional<ShownValue> element;
    std::unique_ptr<SqlCells> embedded;
};

SqlCells::SqlCells(const RecordPlan& plan, const Prefix& prefix, bool isStored, SqlColumns& columns)
    : m_plan(plan)
{
    for (const RecordPlan::Member& member : plan.members) {
        if (member.kind != RecordPlan::Kind::Blocks)
            addStep(member, prefix, isStored, columns);
    }
}

SqlCells::~SqlCells() = default;

void SqlCells::addStep(const RecordPlan::Member& member, const Prefix& prefix, bool isStored,
                       SqlColumns& columns)
{
    const TQX_FieldFacts& facts = TQX_factsOf(*m_plan.type, *member.field);
    const RecordPlan::Part& first = member.parts.front();
    const auto columnOf = [&](const RecordPlan::Part& part, const char* type) {
        SqlColumn column;
        column.field = prefix.field + part.field->name;
        column.name = prefix.column + part.field->name;
        column.type = type;
        column.unit = TQX_unit(*part.facts);
        column.description = part.field->meaning;
        column.scale = TQX_scale(*part.facts);
        return columns.add(column);
    };
    Step& step = m_steps.emplace_back();
    step.member = &member;
    switch (member.kind) {
    case RecordPlan::Kind::Number:
        if (facts.inputCount != 0 && !isStored)
            step.needed = &facts;
        for (const RecordPlan::Part& part : member.parts) {
            SqlNumber number(part, part.field != member.field, isStored);
            const int parameter = columnOf(part, number.getType());
            step.cells.push_back({std::move(number), parameter, {}});
        }
        break;
    case RecordPlan::Kind::Array:
        step.element.emplace(*first.field, *first.facts, false, arrayNotation(isStored));
        step.parameter = columnOf(first, "TEXT");
        break;
    case RecordPlan::Kind::Text:
        step.parameter = columnOf(first, "TEXT");
        break;
    case RecordPlan::Kind::Embedded:
        step.embedded = std::make_unique<SqlCells>(*member.plan,
                                                   Prefix{prefix.field + member.field->name + '.',
                                                          prefix.column + member.field->name + '.'},
                                                   isStored, columns);
        break;
    case RecordPlan::Kind::Blocks:
        break;
    }
}

void SqlCells::setNumber(SqlInsert& row, Step& step, const void* record) const
{
    const RecordPlan::Member& member = *step.member;
    if (step.needed && !TQX_hasInputs(*step.needed, record))
        return;
    const uint64_t word = loadWord(TQX_element(*member.field, record), member.size);
    for (Step::Cell& cell : step.cells)
        cell.number.set(row, cell.parameter, word, cell.text);
}

void SqlCells::setText(SqlInsert& row, Step& step, const void* record)
{
    m_text.clear();
    appendLatin1(m_text, textOf(*step.member->field, record));
    step.text = m_text.view();
    row.setText(step.parameter, step.text);
}

void SqlCells::setArray(SqlInsert& row, Step& step, const void* record)
{
    const RecordPlan::Member& member = *step.member;
    const uint32_t count = TQX_elementCount(*m_plan.type, *member.field, record);
    const auto* element = static_cast<const char*>(TQX_element(*member.field, record));
    const bool isWhole = isWholeValue(*member.facts, element, member.size, count);
    m_text.clear();
    m_text.append('[');
    for (uint32_t i = 0; i < count; ++i, element += member.size) {
        if (i != 0)
            m_text.append(',');
        if (isWhole) {
            number::appendUnsigned(m_text, loadWord(element, member.size));
        } else {
            step.element->append(m_text, loadWord(element, member.size));
        }
    }
    m_text.append(']');
    step.text = m_text.view();
    row.setText(step.parameter, step.text);
}

void SqlCells::set(SqlInsert& row, const void* record)
{
    for (Step& step : m_steps) {
        const RecordPlan::Member& member = *step.member;
        if (member.isOptional && !TQX_isPresent(*m_plan.type, *member.field, record))
            continue;
        switch (member.kind) {
        case RecordPlan::Kind::Number:
            setNumber(row, step, record);
            break;
        case RecordPlan::Kind::Text:
            setText(row, step, record);
            break;
        case RecordPlan::Kind::Array:
            setArray(row, step, record);
            break;
        case RecordPlan::Kind::Embedded:
            step.embedded->set(row, TQX_element(*member.field, record));
            break;
        case RecordPlan::Kind::Blocks:
            break;
        }
    }
}

} // namespace tqx
