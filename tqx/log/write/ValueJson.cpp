#include "tqx/log/write/ValueJson.h"

#include "TQX_codec.h"
#include "tqx/log/record/Members.h"
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

    /// What is written of one member: a number with the bit ranges packed in it, or anything else.
    struct Step {
        // What every number needs stands together.
        bool isNumber;
        bool isOptional;
        bool hasInputs;
        uint32_t size;   ///< of a number in bytes
        uint32_t offset; ///< in the record
        TextCache cache;
        const TQX_FieldLayout* field;
        const TQX_FieldFacts* facts;
        std::vector<Part> parts; ///< of a number; else at most the one for the elements
        PaddedText key;
        std::unique_ptr<ValuePlan> plan; ///< of the sub-block
    };

    const TQX_TypeLayout* type;
    PaddedText opening; ///< of a line, up to its time
    std::vector<Step> steps;
};

namespace
{

const Notation notation = {"null", json::text, json::appendLatin1};

std::unique_ptr<ValuePlan> makePlan(const TQX_TypeLayout& type, const FieldFilter& shown)
{
    const TQX_FieldFacts* facts = TQX_fieldFacts(type.recordType);
    auto plan = std::make_unique<ValuePlan>();
    plan->type = &type;
    plan->opening = PaddedText("{\"block\":" + json::text(type.name));
    int word = -1; // the row that the last step is about
    for (const auto [i, inside] : shown.shownIn(type)) {
        const TQX_FieldLayout& field = type.fields[i];
        const PaddedText key("," + json::key(field.name));
        const bool isPart = isPartOfNumber(type, field);
        if (!isPart || field.parent != word) {
            word = isPart ? field.parent : i;
            const TQX_FieldLayout& member = type.fields[word];
            const uint32_t size = field.recordType == 0 ? TQX_elementSize(member) : 0;
            plan->steps.push_back({isNumber(member),
                                   member.presence != TQX_Presence::Always,
                                   facts[word].inputCount != 0,
                                   size,
                                   member.recordOffset,
                                   {},
                                   &member,
                                   facts + word,
                                   {},
                                   key,
                                   nullptr});
        }
        ValuePlan::Step& step = plan->steps.back();
        if (field.recordType != 0) {
            step.plan = makePlan(*TQX_layout(field.recordType), *inside);
        } else {
            step.parts.push_back({key, ShownValue(field, facts[i], isPart, notation)});
        }
    }
    return plan;
}

void writeRecord(Buffer& out, ValuePlan& plan, const void* record);

void writeNumber(Buffer& out, ValuePlan::Step& step, const void* record)
{
    if (step.hasInputs && !TQX_hasInputs(*step.facts, record)) {
        for (const ValuePlan::Part& part : step.parts) {
            part.key.appendTo(out);
            part.value.appendNotAvailable(out);
        }
        return;
    }
    const uint64_t word = loadWord(static_cast<const char*>(record) + step.offset, step.size);
    step.cache.append(out, word, [&step, word](Buffer& to) {
        for (const ValuePlan::Part& part : step.parts) {
            part.key.appendTo(to);
            part.value.append(to, word);
        }
    });
}

void writeText(Buffer& out, const TQX_FieldLayout& field, const void* record)
{
    const std::string_view text = textOf(field, record);
    json::appendLatin1(out, text.data(), text.size());
}

void writeArray(Buffer& out, const ValuePlan& plan, ValuePlan::Step& step, const void* record)
{
    const TQX_FieldLayout& field = *step.field;
    const uint32_t count = TQX_elementCount(*plan.type, field, record);
    const ShownValue* value = step.plan ? nullptr : &step.parts.front().value;
    const uint32_t stride = step.plan ? step.plan->type->recordSize : step.size;
    const auto* element = static_cast<const char*>(TQX_element(field, record));
    out.append('[');
    for (uint32_t i = 0; i < count; ++i, element += stride) {
        if (i != 0)
            out.append(',');
        if (value) {
            value->append(out, loadWord(element, stride));
        } else {
            writeRecord(out, *step.plan, element);
        }
    }
    out.append(']');
}

void writeRecord(Buffer& out, ValuePlan& plan, const void* record)
{
    const size_t start = out.size();
    for (ValuePlan::Step& step : plan.steps) {
        if (step.isOptional && !TQX_isPresent(*plan.type, *step.field, record))
            continue;
        if (step.isNumber) {
            writeNumber(out, step, record);
            continue;
        }
        const TQX_FieldLayout& field = *step.field;
        step.key.appendTo(out);
        if (field.kind == TQX_FieldKind::Embedded) {
            writeRecord(out, *step.plan, TQX_element(field, record));
        } else if (isText(field)) {
            writeText(out, field, record);
        } else {
            writeArray(out, plan, step, record);
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

ValueJson::ValueJson(const FieldFilter& shown) : m_filter(shown) {}

ValueJson::~ValueJson() = default;

ValuePlan& ValueJson::planOf(uint32_t recordType)
{
    if (m_plans.size() <= recordType)
        m_plans.resize(recordType + 1);
    std::unique_ptr<ValuePlan>& plan = m_plans[recordType];
    if (!plan)
        plan = makePlan(*TQX_layout(recordType), m_filter);
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
    if (!TQX_layout(recordType)->hasMessage)
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
    if (const TQX_TypeLayout* type = TQX_layout(TQX_recordType(block.getNumber())))
        out.append(",\"name\":" + json::text(type->name));
    if (!decoded.record && decoded.consumed != unknownNumber) {
        out.append(",\"error\":{\"code\":");
        number::appendSigned(out, decoded.consumed);
        out.append(",\"name\":" + json::text(TQX_errorName(decoded.consumed)) + '}');
    }
    out.append(",\"bytes\":");
    json::appendBase64(out, block.data, block.size);
    out.append("}\n");
}

} // namespace tqx
