#include "tqx/log/write/Paragraph.h"

#include "tqx/log/record/Members.h"
#include "tqx/log/text/PrintableText.h"
#include "tqx/log/text/TextCache.h"
#include "tqx/log/value/FieldText.h"

#include <fmt/compile.h>
#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

namespace tqx
{

using namespace Kor::MessageApi;

/// How the records of one type are written.
struct ParagraphPlan {
    /// A line of a number, bit range or array.
    struct Line {
        std::string label; ///< name with its indentation, filled up to a column
        FieldText text;
    };

    /// The lines of one member: a number with the bit ranges packed in it, or anything else.
    struct Step {
        const TQX_FieldLayout* field;
        bool isOptional;
        bool isNumber;
        bool isRepeated;
        const TQX_FieldFacts* needed; ///< of a value not available without its inputs, or null
        uint32_t size;                ///< of an element in bytes
        std::vector<Line> lines;
        TextCache cache;
        std::string label;                   ///< of the sub-block
        std::unique_ptr<ParagraphPlan> plan; ///< of the sub-block
    };

    const TQX_TypeLayout* type;
    std::string title; ///< what the block is
    std::vector<Step> steps;
};

namespace
{

constexpr size_t step = 4;

/// Whether a field belongs to the header that all main blocks have.
bool isHeader(const TQX_TypeLayout& type, const TQX_FieldLayout& field)
{
    return type.blockNumber != 0 && field.recordOffset <= offsetof(TQX_MainHeader_s, WNc);
}

ParagraphPlan::Step makeStep(const TQX_FieldLayout& member, const TQX_FieldFacts& facts,
                             bool isStored)
{
    const uint32_t size = TQX_elementSize(member);
    return {&member,
            member.presence != TQX_Presence::Always,
            isNumber(member),
            facts.has(TQX_FieldFacts::Repeated),
            facts.inputCount != 0 && !isStored ? &facts : nullptr,
            size,
            {},
            {},
            {},
            nullptr};
}

/// Fills the labels up to where the values begin.
void alignValues(ParagraphPlan& plan)
{
    size_t column = 0;
    for (const ParagraphPlan::Step& part : plan.steps) {
        for (const ParagraphPlan::Line& line : part.lines)
            column = std::max(column, line.label.size() + 2);
    }
    for (ParagraphPlan::Step& part : plan.steps) {
        for (ParagraphPlan::Line& line : part.lines)
            line.label.resize(column, ' ');
    }
}

std::unique_ptr<ParagraphPlan> makePlan(const TQX_TypeLayout& type, const FieldFilter& shown,
                                        bool isStored, size_t indentation)
{
    const TQX_FieldFacts* facts = TQX_fieldFacts(type.recordType);
    auto plan = std::make_unique<ParagraphPlan>();
    plan->type = &type;
    plan->title = describeBlock(type.blockNumber);
    int word = -1; // the row that the last step is about
    for (const auto [row, inside] : shown.shownIn(type)) {
        const TQX_FieldLayout& field = type.fields[row];
        if (shown.isEverything() && isHeader(type, field))
            continue;
        const bool isPart = isPartOfNumber(type, field);
        if (!isPart || field.parent != word) {
            word = isPart ? field.parent : row;
            plan->steps.push_back(makeStep(type.fields[word], facts[word], isStored));
        }
        ParagraphPlan::Step& added = plan->steps.back();
        const size_t inwards = indentation + (field.kind == TQX_FieldKind::Bits ? step / 2 : 0);
        const std::string label = std::string(inwards, ' ') + field.name;
        if (field.recordType == 0) {
            added.lines.push_back({label, FieldText(field, facts[row], isPart, isStored)});
        } else {
            added.label = label;
            added.plan =
                makePlan(*TQX_layout(field.recordType), *inside, isStored, indentation + step);
        }
    }
    alignValues(*plan);
    return plan;
}

void writeRecord(Buffer& out, ParagraphPlan& plan, const void* record);

/// Ends a line, without the blanks that its value may end with.
void endLine(Buffer& out)
{
    size_t size = out.size();
    while (size != 0 && out.data()[size - 1] == ' ')
        --size;
    out.truncate(size);
    out.append('\n');
}

void writeNumber(Buffer& out, ParagraphPlan::Step& part, const void* record)
{
    if (part.needed && !TQX_hasInputs(*part.needed, record)) {
        for (const ParagraphPlan::Line& line : part.lines) {
            out.append(line.label);
            FieldText::appendNotAvailable(out);
            out.append('\n');
        }
        return;
    }
    const uint64_t word =
        loadWord(static_cast<const char*>(record) + part.field->recordOffset, part.size);
    part.cache.append(out, word, [&part, word](Buffer& to) {
        for (const ParagraphPlan::Line& line : part.lines) {
            to.append(line.label);
            if (line.text.append(to, word))
                to.append(line.text.getUnit());
            endLine(to);
        }
    });
}

void writeArray(Buffer& out, const ParagraphPlan::Line& line, const char* element, uint32_t size,
                uint32_t count)
{
    out.append(line.label);
    bool showsNumber = false;
    for (uint32_t i = 0; i < count; ++i, element += size) {
        if (i != 0)
            out.append(' ');
        if (line.text.append(out, loadWord(element, size)))
            showsNumber = true;
    }
    if (showsNumber)
        out.append(line.text.getUnit());
    endLine(out);
}

void writeSubBlocks(Buffer& out, ParagraphPlan::Step& part, const char* element, uint32_t count)
{
    for (uint32_t i = 0; i < count; ++i, element += part.size) {
        out.append(part.label);
        if (part.isRepeated) {
            out.append('[');
            out.append(fmt::format_int(i).str());
            out.append(']');
        }
        out.append('\n');
        writeRecord(out, *part.plan, element);
    }
}

void writeRecord(Buffer& out, ParagraphPlan& plan, const void* record)
{
    for (ParagraphPlan::Step& part : plan.steps) {
        const TQX_FieldLayout& field = *part.field;
        if (part.isOptional && !TQX_isPresent(*plan.type, field, record))
            continue;
        if (part.isNumber) {
            writeNumber(out, part, record);
            continue;
        }
        if (isText(field)) {
            out.append(part.lines.front().label);
            appendPrintableLatin1(out, textOf(field, record));
            endLine(out);
            continue;
        }
        const uint32_t count = TQX_elementCount(*plan.type, field, record);
        const auto* element = static_cast<const char*>(TQX_element(field, record));
        if (part.plan) {
            writeSubBlocks(out, part, element, count);
        } else if (count != 0) {
            writeArray(out, part.lines.front(), element, part.size, count);
        }
    }
}

} // namespace

Paragraph::Paragraph(const FieldFilter& shown, Values mode) : m_filter(shown), m_values(mode) {}

Paragraph::~Paragraph() = default;

ParagraphPlan& Paragraph::planOf(uint32_t recordType)
{
    if (m_plans.size() <= recordType)
        m_plans.resize(recordType + 1);
    std::unique_ptr<ParagraphPlan>& plan = m_plans[recordType];
    if (!plan)
        plan = makePlan(*TQX_layout(recordType), m_filter, m_values == Values::Stored, step);
    return *plan;
}

void Paragraph::appendTitle(Buffer& out, std::string_view what, const Block& block)
{
    const std::optional<GnssMillis> time = block.getTime();
    if (time != m_lastTime || m_lastTimeText.empty()) {
        m_lastTime = time;
        m_lastTimeText = time ? timeText(*time) : "no time";
    }
    out.append(what);
    out.append("  ");
    out.append(m_lastTimeText);
    constexpr size_t longest = 80;
    char* const begin = out.reserve(longest);
    const char* end = fmt::format_to(begin, FMT_COMPILE("  revision {}, {} bytes at {}\n"),
                                     block.getRevision(), block.size, block.offset);
    out.advance(static_cast<size_t>(end - begin));
}

void Paragraph::write(Buffer& out, const Block& block, const void* record)
{
    const uint32_t recordType = static_cast<const KorcgHeader_s*>(record)->korcg_type;
    if (!TQX_layout(recordType)->hasMessage)
        return writeTitle(out, block);
    ParagraphPlan& plan = planOf(recordType);
    if (plan.steps.empty() && !m_filter.isEverything())
        return;
    appendTitle(out, plan.title, block);
    writeRecord(out, plan, record);
    out.append('\n');
}

void Paragraph::writeTitle(Buffer& out, const Block& block)
{
    if (!m_filter.isEverything())
        return;
    appendTitle(out, describeBlock(block.getNumber()), block);
    out.append('\n');
}

} // namespace tqx
