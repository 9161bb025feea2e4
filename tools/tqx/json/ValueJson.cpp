#include "ValueJson.h"

#include "JsonText.h"
#include "Scale.h"

#include "FieldInfo.h"
#include "Message.h"
#include "MessageInfo.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tool
{

/// How the messages of one type are written.
struct ValuePlan {
    struct Field {
        const FieldInfo* info;
        std::string key; ///< with the comma that parts it from the field before
        std::optional<Scale> scale;
        std::vector<std::pair<FieldValue, std::string>> names; ///< by value; the names as JSON
        std::unique_ptr<ValuePlan> plan;                       ///< of the sub-block
    };

    std::string opening; ///< of a line, up to the value of "fields"
    std::vector<Field> fields;
};

namespace
{

std::unique_ptr<ValuePlan> makePlan(const MessageInfo& type, const FieldFilter& shown)
{
    auto plan = std::make_unique<ValuePlan>();
    plan->opening = "{\"block\":" + json::text(type.getName().toStdString()) + ",\"fields\":";
    for (const FieldInfo* info : type.getFieldInfos()) {
        const std::string name = info->getName().toStdString();
        const FieldFilter* inside = shown.find(name);
        if (!inside)
            continue;
        ValuePlan::Field field = {info, "," + json::key(name), std::nullopt, {}, nullptr};
        if (info->hasScaleFactor())
            field.scale.emplace(info->getScaleFactor());
        // Floating-point values have no names of their own but that for "not available".
        if (info->getType().isInteger())
            for (const FieldInfo::SymbolicValue& symbol : info->getSymbolicValues())
                field.names.emplace_back(symbol.value, json::text(symbol.name.toStdString()));
        std::stable_sort(field.names.begin(), field.names.end(),
                         [](const auto& a, const auto& b) { return a.first < b.first; });
        if (const MessageInfo* sub = info->getType().getSubMessageInfo())
            field.plan = makePlan(*sub, *inside);
        plan->fields.push_back(std::move(field));
    }
    return plan;
}

const std::string* nameOf(const ValuePlan::Field& field, const FieldValue& value)
{
    const auto found = std::lower_bound(
        field.names.begin(), field.names.end(), value,
        [](const auto& entry, const FieldValue& wanted) { return entry.first < wanted; });
    return found == field.names.end() || found->first != value ? nullptr : &found->second;
}

void writeMessage(Buffer& out, const ValuePlan& plan, const Message& message);

void writeNumber(Buffer& out, const ValuePlan::Field& field, const FieldValue& value)
{
    if (field.scale)
        return json::appendDouble(out, field.scale->apply(value.toDouble()));
    switch (value.getKind()) {
    case FieldKind::U:
        return json::appendUnsigned(out, value.getU64());
    case FieldKind::I:
        return json::appendSigned(out, value.getI64());
    case FieldKind::F32:
        return json::appendFloat(out, value.getF32());
    default:
        return json::appendDouble(out, value.getF64());
    }
}

void writeValue(Buffer& out, const ValuePlan::Field& field, const FieldValue& value)
{
    if (value.getKind() == FieldKind::Ch) {
        const char character = value.getCh();
        json::appendLatin1(out, &character, character == 0 ? 0 : 1);
    } else if (value.getKind() == FieldKind::SubMessage) {
        writeMessage(out, *field.plan, *value.getSubMessage());
    } else if (field.info->isDoNotUse(value)) {
        out.append("null");
    } else if (const std::string* name = nameOf(field, value)) {
        out.append(*name);
    } else {
        writeNumber(out, field, value);
    }
}

void writeText(Buffer& out, const FieldInfo& info, const Message& message, unsigned count)
{
    std::string text;
    for (unsigned i = 0; i < count; ++i) {
        const char character = info.getValueUnchecked(&message, i).getCh();
        if (character == 0)
            break;
        text += character;
    }
    json::appendLatin1(out, text.data(), text.size());
}

void writeField(Buffer& out, const ValuePlan::Field& field, const Message& message)
{
    const FieldInfo& info = *field.info;
    if (!info.isRepeated())
        return writeValue(out, field, info.getValueUnchecked(&message, 0));
    const unsigned count = info.getNumberOfValues(&message);
    if (info.getType().getKind() == FieldKind::Ch)
        return writeText(out, info, message, count);
    out.append('[');
    for (unsigned i = 0; i < count; ++i) {
        if (i != 0)
            out.append(',');
        writeValue(out, field, info.getValueUnchecked(&message, i));
    }
    out.append(']');
}

/// An array without elements is there nevertheless, unless the whole field is not.
bool isThere(const FieldInfo& info, const Message& message)
{
    return info.hasValue(&message) || (info.isRepeated() && !info.isOptional());
}

void writeMessage(Buffer& out, const ValuePlan& plan, const Message& message)
{
    out.append('{');
    size_t comma = 1;
    for (const ValuePlan::Field& field : plan.fields) {
        if (!isThere(*field.info, message))
            continue;
        out.append(field.key.data() + comma, field.key.size() - comma);
        comma = 0;
        writeField(out, field, message);
    }
    out.append('}');
}

} // namespace

ValueJson::ValueJson(const FieldFilter& shown) : filter(shown) {}

ValueJson::~ValueJson() = default;

void ValueJson::write(Buffer& out, const Message& message)
{
    std::unique_ptr<ValuePlan>& plan = plans[message.getInfo()];
    if (!plan)
        plan = makePlan(*message.getInfo(), filter);
    if (plan->fields.empty())
        return;
    out.append(plan->opening);
    writeMessage(out, *plan, message);
    out.append("}\n");
}

} // namespace tool
