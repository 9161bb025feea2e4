#include "tqx/log/write/Paragraph.h"

#include "tqx/log/record/MemberReader.h"
#include "tqx/log/text/NumberText.h"
#include "tqx/log/text/PrintableText.h"
#include "tqx/log/text/TextCache.h"
#include "tqx/log/time/LeapSeconds.h"
#include "tqx/log/value/FieldText.h"

#include <fmt/compile.h>
#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
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

    /// The lines of one member.
    struct Step {
        MemberReader member;
        bool isRepeated;
        std::vector<Line> lines; ///< none of a sub-block
        TextCache cache;         ///< of a number
        std::string label;       ///< of the sub-block
        std::unique_ptr<ParagraphPlan> plan;
    };

    std::string title; ///< what the block is
    bool isStored;
    std::vector<Step> steps;
};

namespace
{

constexpr size_t indent = 4;

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

std::unique_ptr<ParagraphPlan> makePlan(const RecordPlan& shown, const ValueStyle& style,
                                        size_t indentation)
{
    auto plan = std::make_unique<ParagraphPlan>();
    plan->title = describeBlock(*shown.type);
    plan->isStored = style.isStored;
    for (const RecordPlan::Member& member : shown.members) {
        plan->steps.push_back({MemberReader(shown, member),
                               member.facts->has(TQX_FieldFacts::Repeated),
                               {},
                               {},
                               {},
                               nullptr});
        ParagraphPlan::Step& added = plan->steps.back();
        if (member.plan) {
            added.label = std::string(indentation, ' ') + member.field->name;
            added.plan = makePlan(*member.plan, style, indentation + indent);
            continue;
        }
        for (const RecordPlan::Part& part : member.parts) {
            const bool isBits = part.field->kind == TQX_FieldKind::Bits;
            const size_t inwards = indentation + (isBits ? indent / 2 : 0);
            const bool isPacked = part.field != member.field;
            added.lines.push_back({std::string(inwards, ' ') + part.field->name,
                                   FieldText(*part.field, *part.facts, isPacked, style)});
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

void writeNumber(Buffer& out, ParagraphPlan::Step& part, bool isStored, const void* record)
{
    if (!isStored && !part.member.isAvailable(record)) {
        for (const ParagraphPlan::Line& line : part.lines) {
            out.append(line.label);
            FieldText::appendNotAvailable(out);
            out.append('\n');
        }
        return;
    }
    const uint64_t word = part.member.getWord(record);
    part.cache.append(out, word, [&part, word](Buffer& to) {
        for (const ParagraphPlan::Line& line : part.lines) {
            to.append(line.label);
            if (line.text.append(to, word))
                to.append(line.text.getUnit());
            endLine(to);
        }
    });
}

void writeArray(Buffer& out, const ParagraphPlan::Line& line, const MemberReader& member,
                const void* record, uint32_t count)
{
    const uint32_t size = member.getStride();
    const char* element = member.getElements(record);
    const bool isWhole = member.isWhole(record);
    out.append(line.label);
    bool showsNumber = false;
    for (uint32_t i = 0; i < count; ++i, element += size) {
        if (i != 0)
            out.append(' ');
        if (isWhole) {
            number::appendUnsigned(out, loadWord(element, size));
        } else if (line.text.append(out, loadWord(element, size))) {
            showsNumber = true;
        }
    }
    if (showsNumber)
        out.append(line.text.getUnit());
    endLine(out);
}

void writeSubBlocks(Buffer& out, ParagraphPlan::Step& part, const char* element, uint32_t count)
{
    for (uint32_t i = 0; i < count; ++i, element += part.member.getStride()) {
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
        if (!part.member.isPresent(record))
            continue;
        if (part.member.isNumber()) {
            writeNumber(out, part, plan.isStored, record);
            continue;
        }
        if (part.member.getKind() == RecordPlan::Kind::Text) {
            out.append(part.lines.front().label);
            appendPrintableLatin1(out, part.member.getText(record));
            endLine(out);
            continue;
        }
        const uint32_t count = part.member.countElements(record);
        if (part.plan) {
            writeSubBlocks(out, part, part.member.getElements(record), count);
        } else if (count != 0) {
            writeArray(out, part.lines.front(), part.member, record, count);
        }
    }
}

} // namespace

Paragraph::Paragraph(const FieldFilter& shown, const ValueStyle& wanted, bool wantsUtc)
    : m_filter(shown), m_style(wanted), m_isUtc(wantsUtc)
{
}

Paragraph::~Paragraph() = default;

ParagraphPlan& Paragraph::planOf(uint32_t recordType)
{
    if (m_plans.size() <= recordType)
        m_plans.resize(recordType + 1);
    std::unique_ptr<ParagraphPlan>& plan = m_plans[recordType];
    if (!plan) {
        plan = makePlan(planRecord(*m_filter.getSchema().getType(recordType), m_filter,
                                   ShownFields::WithoutHeader),
                        m_style, indent);
    }
    return *plan;
}

void Paragraph::appendTitle(Buffer& out, std::string_view what, const Block& block)
{
    const std::optional<GnssMillis> time = block.getTime();
    if (time != m_lastTime || m_lastTimeText.empty()) {
        m_lastTime = time;
        m_lastTimeText = !time     ? "no time"
                         : m_isUtc ? weekText(*time) + "  " + utcText(*time)
                                   : timeText(*time);
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
    if (!m_filter.getSchema().getType(recordType)->hasMessage)
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
    appendTitle(out, describeBlock(block.getNumber(), m_filter.getSchema()), block);
    out.append('\n');
}

} // namespace tqx
