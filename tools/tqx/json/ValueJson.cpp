#include "ValueJson.h"

#include "JsonText.h"
#include "Scale.h"
#include "ValueNames.h"

#include "FieldInfo.h"
#include "Message.h"
#include "MessageInfo.h"

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
        ValueNames names;
        std::optional<double> notAvailable; ///< of a floating-point field
        std::unique_ptr<ValuePlan> plan;    ///< of the sub-block
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
        ValuePlan::Field field = {
            info, "," + json::key(name), std::nullopt, ValueNames(*info), std::nullopt, nullptr};
        if (info->hasScaleFactor())
            field.scale.emplace(info->getScaleFactor());
        if (info->getType().isFloat() && info->hasDoNotUseValue())
            field.notAvailable = info->getDoNotUseValue().toDouble();
        if (const MessageInfo* sub = info->getType().getSubMessageInfo())
            field.plan = makePlan(*sub, *inside);
        plan->fields.push_back(std::move(field));
    }
    return plan;
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
    if (value.isInteger()) {
        if (const std::string* name = field.names.find(value))
            out.append(*name);
        else
            writeNumber(out, field, value);
    } else if (value.isFloat()) {
        if (field.notAvailable && value.getF64() == *field.notAvailable)
            out.append("null");
        else
            writeNumber(out, field, value);
    } else if (value.getKind() == FieldKind::Ch) {
        const char character = value.getCh();
        json::appendLatin1(out, &character, character == 0 ? 0 : 1);
    } else {
        writeMessage(out, *field.plan, *value.getSubMessage());
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
