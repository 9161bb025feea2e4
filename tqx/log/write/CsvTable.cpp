#include "tqx/log/write/CsvTable.h"

#include "tqx/log/record/Members.h"
#include "tqx/log/text/CsvText.h"
#include "tqx/log/text/TextCache.h"
#include "tqx/log/value/ShownValue.h"

#include <cstddef>
#include <utility>

namespace tqx
{

using namespace Kor::MessageApi;

/// What is written of one member: a number with the bit ranges packed in it, or anything else.
struct CsvTable::Step {
    enum class Kind { Number, Text, Array, Embedded };

    const TQX_FieldLayout* field;
    const TQX_FieldFacts* needed; ///< of a value that is not available without its inputs, or null
    Kind kind;
    bool isOptional;
    uint32_t size;                  ///< of an element in bytes
    std::string empty;              ///< the cells when the field is absent
    std::vector<ShownValue> values; ///< a cell each for a number; one for elements
    TextCache cache;
    std::unique_ptr<CsvTable> embedded;
};

namespace
{

/// Elements of an array share a cell, which is put in quotes as a whole.
std::string unquoted(std::string_view characters)
{
    return std::string(characters);
}

/// Fields that nobody looks for: those of the header, most of which the key columns hold, and
/// padding.
bool isFiller(const TQX_TypeLayout& type, const TQX_FieldLayout& field)
{
    return field.isPadding ||
           (type.blockNumber != 0 && field.recordOffset <= offsetof(TQX_MainHeader_s, WNc));
}

/// Week and time of week.
bool isInKey(const TQX_TypeLayout& type, const TQX_FieldLayout& field)
{
    return type.blockNumber != 0 && (field.recordOffset == offsetof(TQX_MainHeader_s, TOW) ||
                                     field.recordOffset == offsetof(TQX_MainHeader_s, WNc));
}

} // namespace

CsvTable::CsvTable(const TQX_TypeLayout& layout, const FieldFilter& shown, const CsvStyle& wanted)
    : m_type(layout), m_style(wanted)
{
    int word = -1; // the row that the last step is about
    for (const auto [row, inside] : shown.shownIn(m_type)) {
        const TQX_FieldLayout& field = m_type.fields[row];
        if (shown.isEverything() && isFiller(m_type, field))
            continue;
        if (isInKey(m_type, field)) {
            m_showsKey = true;
            continue;
        }
        if (field.recordType != 0) {
            addSubBlock(field, *inside);
            word = -1;
            continue;
        }
        const bool isPart = isPartOfNumber(m_type, field);
        const int stepRow = isPart ? field.parent : row;
        if (m_steps.empty() || stepRow != word)
            addStep(m_type.fields[stepRow]);
        word = stepRow;
        addCell(row, isPart);
    }
}

CsvTable::~CsvTable() = default;

void CsvTable::addStep(const TQX_FieldLayout& member)
{
    const uint32_t size = member.recordType == 0 ? TQX_elementSize(member) : 0;
    m_steps.push_back({&member,
                       nullptr,
                       isNumber(member)         ? Step::Kind::Number
                       : isText(member)         ? Step::Kind::Text
                       : member.recordType == 0 ? Step::Kind::Array
                                                : Step::Kind::Embedded,
                       member.presence != TQX_Presence::Always,
                       size,
                       {},
                       {},
                       {},
                       nullptr});
}

void CsvTable::addCell(int row, bool isPart)
{
    const TQX_FieldFacts& facts = TQX_fieldFacts(m_type.recordType)[row];
    Step& step = m_steps.back();
    const bool isArray = step.kind == Step::Kind::Array;
    const bool isGuarded = m_style.isSafe && !isArray;
    const Notation notation = {"", isArray ? unquoted : csv::cell,
                               isGuarded ? csv::appendGuardedLatin1 : csv::appendLatin1,
                               m_style.isStored};
    step.values.emplace_back(m_type.fields[row], facts, isPart, notation);
    if (facts.inputCount != 0 && !m_style.isStored)
        step.needed = &facts;
    step.empty += ',';
    std::string name = m_type.fields[row].name;
    if (facts.unit != 0 && !m_style.isStored)
        name += " [" + std::string(TQX_unit(facts)) + "]";
    m_columns.push_back(name);
}

void CsvTable::addSubBlock(const TQX_FieldLayout& field, const FieldFilter& shown)
{
    auto table = std::make_unique<CsvTable>(*TQX_layout(field.recordType), shown, m_style);
    if (field.kind == TQX_FieldKind::Blocks) {
        if (!table->m_columns.empty() || !table->m_children.empty())
            m_children.push_back({&field, std::move(table)});
        return;
    }
    addStep(field);
    for (const std::string& column : table->m_columns)
        m_columns.push_back(std::string(field.name) + '.' + column);
    m_steps.back().empty.assign(table->m_columns.size(), ',');
    m_steps.back().embedded = std::move(table);
}

void CsvTable::appendCells(Buffer& out, const void* record)
{
    for (Step& step : m_steps) {
        if (step.isOptional && !TQX_isPresent(m_type, *step.field, record)) {
            out.append(step.empty);
        } else {
            appendStep(out, step, record);
        }
    }
}

void CsvTable::appendStep(Buffer& out, Step& step, const void* record)
{
    const auto* element = static_cast<const char*>(TQX_element(*step.field, record));
    switch (step.kind) {
    case Step::Kind::Number: {
        if (step.needed && !TQX_hasInputs(*step.needed, record))
            return out.append(step.empty);
        const uint64_t word = loadWord(element, step.size);
        return step.cache.append(out, word, [&step, word](Buffer& to) {
            for (const ShownValue& value : step.values) {
                to.append(',');
                value.append(to, word);
            }
        });
    }
    case Step::Kind::Text: {
        const std::string_view text = textOf(*step.field, record);
        out.append(',');
        return (m_style.isSafe ? csv::appendGuardedLatin1 : csv::appendLatin1)(out, text.data(),
                                                                               text.size());
    }
    case Step::Kind::Embedded:
        return step.embedded->appendCells(out, element);
    case Step::Kind::Array:
        break;
    }
    out.append(',');
    const size_t start = out.size();
    const uint32_t count = TQX_elementCount(m_type, *step.field, record);
    for (uint32_t i = 0; i < count; ++i, element += step.size) {
        if (i != 0)
            out.append(';');
        step.values.front().append(out, loadWord(element, step.size));
    }
    if (m_style.isSafe && step.field->type == TQX_MemberType::Char)
        csv::guardFrom(out, start);
    csv::quoteFrom(out, start);
}

uint32_t CsvTable::countEntries(const Child& child, const void* record) const
{
    if (child.field->presence != TQX_Presence::Always &&
        !TQX_isPresent(m_type, *child.field, record))
        return 0;
    return TQX_elementCount(m_type, *child.field, record);
}

const void* CsvTable::entry(const Child& child, const void* record, uint32_t index)
{
    return TQX_element(*child.field, record, index);
}

} // namespace tqx
