#include "tqx/log/write/ValueJson.h"

#include "TQX_codec.h"
#include "tqx/log/record/MemberReader.h"
#include "tqx/log/text/JsonText.h"
#include "tqx/log/text/NumberText.h"
#include "tqx/log/text/PaddedText.h"
#include "tqx/log/text/TextCache.h"
#include "tqx/log/time/LeapSeconds.h"
#include "tqx/log/value/ShownValue.h"

#include <utility>

namespace tqx
{

using namespace Kor::MessageApi;

/// How the records of one type are written.
struct ValuePlan {
    struct Part {
        PaddedText key; ///< with the comma that parts it from the field before
        ShownValue value;
    };

    /// What to write of one member.
    struct Step {
        MemberReader member;
        TextCache cache;                 ///< of a number
        std::vector<Part> parts;         ///< of a number; of anything else the one that it is
        std::unique_ptr<ValuePlan> plan; ///< of the sub-block
    };

    PaddedText opening; ///< of a line, up to its time
    std::vector<Step> steps;
};

namespace
{

const Notation notation = {"null", json::text, json::appendLatin1};

std::unique_ptr<ValuePlan> makePlan(const RecordPlan& shown, const ValueStyle& style)
{
    auto plan = std::make_unique<ValuePlan>();
    plan->opening = PaddedText("{\"block\":" + json::text(shown.type->name));
    for (const RecordPlan::Member& member : shown.members) {
        plan->steps.push_back({MemberReader(shown, member), {}, {}, nullptr});
        ValuePlan::Step& step = plan->steps.back();
        for (const RecordPlan::Part& part : member.parts) {
            const bool isPacked = part.field != member.field;
            step.parts.push_back({PaddedText("," + json::key(part.field->name)),
                                  ShownValue(*part.field, *part.facts, isPacked, notation, style)});
        }
        if (member.plan)
            step.plan = makePlan(*member.plan, style);
    }
    return plan;
}

void writeRecord(Buffer& out, ValuePlan& plan, const void* record);

void writeNumber(Buffer& out, ValuePlan::Step& step, const void* record)
{
    if (!step.member.isAvailable(record)) {
        for (const ValuePlan::Part& part : step.parts) {
            part.key.appendTo(out);
            part.value.appendNotAvailable(out);
        }
        return;
    }
    const uint64_t word = step.member.getWord(record);
    step.cache.append(out, word, [&step, word](Buffer& to) {
        for (const ValuePlan::Part& part : step.parts) {
            part.key.appendTo(to);
            part.value.append(to, word);
        }
    });
}

void writeArray(Buffer& out, ValuePlan::Step& step, const void* record)
{
    const uint32_t count = step.member.countElements(record);
    const uint32_t stride = step.member.getStride();
    const char* element = step.member.getElements(record);
    const bool isWhole = step.member.isWhole(record);
    out.append('[');
    for (uint32_t i = 0; i < count; ++i, element += stride) {
        if (i != 0)
            out.append(',');
        if (step.plan) {
            writeRecord(out, *step.plan, element);
        } else if (isWhole) {
            number::appendUnsigned(out, loadWord(element, stride));
        } else {
            step.parts.front().value.append(out, loadWord(element, stride));
        }
    }
    out.append(']');
}

void writeRecord(Buffer& out, ValuePlan& plan, const void* record)
{
    const size_t start = out.size();
    for (ValuePlan::Step& step : plan.steps) {
        if (!step.member.isPresent(record))
            continue;
        if (step.member.isNumber()) {
            writeNumber(out, step, record);
            continue;
        }
        step.parts.front().key.appendTo(out);
        if (step.member.getKind() == RecordPlan::Kind::Embedded) {
            writeRecord(out, *step.plan, step.member.getElements(record));
        } else if (step.member.getKind() == RecordPlan::Kind::Text) {
            const std::string_view text = step.member.getText(record);
            json::appendLatin1(out, text.data(), text.size());
        } else {
            writeArray(out, step, record);
        }
    }
    // The first field brought a comma where the object begins.
    if (out.size() == start) {
        out.append('{');
    } else {
        out.replace(start, '{');
    }
    out.append('}');
}

} // namespace

ValueJson::ValueJson(const FieldFilter& shown, const ValueStyle& wanted)
    : m_filter(shown), m_style(wanted)
{
}

ValueJson::~ValueJson() = default;

ValuePlan& ValueJson::planOf(uint32_t recordType)
{
    if (m_plans.size() <= recordType)
        m_plans.resize(recordType + 1);
    std::unique_ptr<ValuePlan>& plan = m_plans[recordType];
    if (!plan) {
        plan = makePlan(
            planRecord(*m_filter.getSchema().getType(recordType), m_filter, ShownFields::All),
            m_style);
    }
    return *plan;
}

void ValueJson::appendTime(Buffer& out, const Block& block)
{
    const std::optional<GnssMillis> time = block.getTime();
    if (time != m_lastTime || m_lastTimeText.empty()) {
        m_lastTime = time;
        m_lastTimeText = time ? R"(,"time":{"scale":"GPS","gnss":")" + dateText(*time) +
                                    R"(","utc":")" + utcText(*time) + "\"}"
                              : ",\"time\":null";
    }
    out.append(m_lastTimeText);
}

void ValueJson::write(Buffer& out, const DecodedBlock& decoded)
{
    const uint32_t recordType = decoded.getHeader().korcg_type;
    if (!m_filter.getSchema().getType(recordType)->hasMessage)
        return writeBytes(out, decoded);
    ValuePlan& plan = planOf(recordType);
    if (plan.steps.empty())
        return;
    plan.opening.appendTo(out);
    appendTime(out, decoded.block);
    out.append(",\"fields\":");
    writeRecord(out, plan, decoded.record);
    out.append("}\n");
}

void ValueJson::writeBytes(Buffer& out, const DecodedBlock& decoded)
{
    if (!m_filter.isEverything())
        return;
    const Block& block = decoded.block;
    out.append("{\"number\":");
    number::appendUnsigned(out, block.getNumber());
    appendTime(out, block);
    if (const TQX_TypeLayout* type = m_filter.getSchema().getBlockType(block.getNumber()))
        out.append(",\"name\":" + json::text(type->name));
    if (!decoded.record && decoded.consumed != unknownNumber) {
        out.append(",\"error\":{\"code\":");
        number::appendSigned(out, decoded.consumed);
        out.append(",\"name\":" + json::text(m_filter.getSchema().getErrorName(decoded.consumed)) +
                   '}');
    }
    out.append(",\"bytes\":");
    json::appendBase64(out, block.data, block.size);
    out.append("}\n");
}

} // namespace tqx
