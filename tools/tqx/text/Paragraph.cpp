#include "Paragraph.h"

#include "TQX_FieldInfo.h"
#include "TQX_RecordAccess.h"

#include "Message.h"
#include "MessageInfo.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace tool
{

/// How the messages of one type are written.
struct ParagraphPlan {
    struct Field {
        const FieldInfo* info;
        std::string label;                   ///< name with its indentation, filled up to a column
        std::unique_ptr<ParagraphPlan> plan; ///< of the sub-block
    };

    std::vector<Field> fields;
};

namespace
{

constexpr size_t step = 4;

/// Whether a field belongs to the header that all main blocks have.
bool isHeader(const MessageInfo& type, const FieldInfo* field)
{
    const auto* info = dynamic_cast<const TQX_FieldInfo*>(field);
    return type.isMain() && info &&
           info->layout().recordOffset <= offsetof(Kor::MessageApi::TQX_MainHeader_s, WNc);
}

std::unique_ptr<ParagraphPlan> makePlan(const MessageInfo& type, const FieldFilter& shown,
                                        size_t indentation)
{
    auto plan = std::make_unique<ParagraphPlan>();
    QVector<const FieldInfo*> subFields;
    size_t column = 0;
    for (const FieldInfo* info : type.getFieldInfos()) {
        subFields += info->getSubFieldInfos();
        const std::string name = info->getName().toStdString();
        const FieldFilter* inside = shown.find(name);
        if (!inside || (shown.isEverything() && isHeader(type, info)))
            continue;
        const size_t inwards = indentation + (subFields.contains(info) ? step / 2 : 0);
        ParagraphPlan::Field field = {info, std::string(inwards, ' ') + name, nullptr};
        if (const MessageInfo* sub = info->getType().getSubMessageInfo())
            field.plan = makePlan(*sub, *inside, indentation + step);
        else
            column = std::max(column, field.label.size() + 2);
        plan->fields.push_back(std::move(field));
    }
    for (ParagraphPlan::Field& field : plan->fields)
        if (!field.plan)
            field.label.resize(column, ' ');
    return plan;
}

class Writer
{
public:
    Writer(Buffer& buffer, Paragraph::Values mode) : out(buffer), values(mode) {}

    void writeFields(const ParagraphPlan& plan, const Message& message);

private:
    void writeSubBlocks(const ParagraphPlan::Field& field, const Message& message);
    void writeStored(const FieldInfo& info, const Message& message);
    void append(const QString& text);

    Buffer& out;
    Paragraph::Values values;
};

void Writer::append(const QString& text)
{
    const QByteArray utf8 = text.toUtf8();
    out.append(utf8.constData(), static_cast<size_t>(utf8.size()));
}

void Writer::writeStored(const FieldInfo& info, const Message& message)
{
    const unsigned count = info.getNumberOfValues(&message);
    for (unsigned i = 0; i < count; ++i) {
        if (i != 0)
            out.append(' ');
        append(info.getValueUnchecked(&message, i).toString());
    }
}

void Writer::writeSubBlocks(const ParagraphPlan::Field& field, const Message& message)
{
    const unsigned count = field.info->getNumberOfValues(&message);
    for (unsigned i = 0; i < count; ++i) {
        out.append(field.label);
        if (field.info->isRepeated())
            out.append(fmt::format("[{}]", i));
        out.append('\n');
        writeFields(*field.plan, *field.info->getValueUnchecked(&message, i).getSubMessage());
    }
}

void Writer::writeFields(const ParagraphPlan& plan, const Message& message)
{
    for (const ParagraphPlan::Field& field : plan.fields) {
        if (!field.info->hasValue(&message))
            continue;
        if (field.plan) {
            writeSubBlocks(field, message);
            continue;
        }
        out.append(field.label);
        if (values == Paragraph::Values::Stored && field.info->getType().getKind() != FieldKind::Ch)
            writeStored(*field.info, message);
        else
            append(field.info->getValueString(&message));
        out.append('\n');
    }
}

void appendTitle(Buffer& out, const Block& block)
{
    out.append(describeBlock(block.getNumber()));
    if (const std::optional<GnssMillis> time = block.getTime())
        out.append("  " + timeText(*time));
    else
        out.append("  no time");
    out.append(fmt::format("  revision {}, {} bytes at {}\n", block.getRevision(), block.size,
                           block.offset));
}

} // namespace

Paragraph::Paragraph(const FieldFilter& shown, Values mode) : filter(shown), values(mode) {}

Paragraph::~Paragraph() = default;

void Paragraph::write(Buffer& out, const Block& block, const Message& message)
{
    std::unique_ptr<ParagraphPlan>& plan = plans[message.getInfo()];
    if (!plan)
        plan = makePlan(*message.getInfo(), filter, step);
    if (plan->fields.empty() && !filter.isEverything())
        return;
    appendTitle(out, block);
    Writer(out, values).writeFields(*plan, message);
    out.append('\n');
}

void Paragraph::writeTitle(Buffer& out, const Block& block) const
{
    if (!filter.isEverything())
        return;
    appendTitle(out, block);
    out.append('\n');
}

} // namespace tool
