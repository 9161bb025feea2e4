#include "model/FieldRows.h"

#include <FieldInfo.h>
#include <FormatInfo.h>
#include <Message.h>
#include <MessageInfo.h>

#include <QHash>
#include <QSet>
#include <QStringList>

#include <utility>

namespace tqx::view
{

namespace
{

class RowMaker
{
public:
    RowMaker(const MessageContent& content, const MessageLog& log) : m_log(log)
    {
        for (const FieldBytes& place : content.places)
            m_places.insert(place.path, &place);
    }

    void addMessage(const Message& message, int parent, const QString& path,
                    const QString& expression)
    {
        QSet<const FieldInfo*> bitRanges;
        for (const FieldInfo* field : message.getInfo()->getFieldInfos()) {
            for (const FieldInfo* part : field->getSubFieldInfos())
                bitRanges.insert(part);
        }
        for (const FieldInfo* field : message.getInfo()->getFieldInfos()) {
            if (!bitRanges.contains(field) && field->hasValue(&message))
                addField(*field, message, parent, path, expression);
        }
    }

    std::vector<FieldRow> take() { return std::move(m_rows); }

private:
    // More elements than anyone would read one by one.
    static constexpr unsigned mostElements = 4096;

    void addField(const FieldInfo& field, const Message& message, int parent, const QString& path,
                  const QString& expression)
    {
        const QString name = path + field.getName();
        const unsigned count = field.getNumberOfValues(&message);
        const bool isNested = field.getType().getKind() == FieldKind::SubMessage;
        const bool isText = field.getType().getKind() == FieldKind::Ch;
        if (count == 1 && !isNested) {
            const int row = add(field, parent, field.getName(), name, expression);
            describe(row, field, message, 0);
            addBitRanges(field, message, row, path, expression);
            return;
        }
        if (count == 1 && !field.isRepeated()) {
            const int row = add(field, parent, field.getName(), name, expression);
            addSubMessage(field, message, 0, row, name);
            return;
        }
        const int group = add(field, parent, field.getName(), name, expression);
        if (isNested) {
            m_rows[static_cast<size_t>(group)].value = QString::number(count);
        } else {
            m_rows[static_cast<size_t>(group)].value = field.getValueString(&message).trimmed();
        }
        if (isText)
            return;
        for (unsigned i = 0; i < count && i < mostElements; ++i) {
            const QString index = QString("[%1]").arg(i);
            const int row = add(field, group, index, name + index, expression);
            if (isNested) {
                addSubMessage(field, message, i, row, name + index);
            } else {
                describe(row, field, message, i);
            }
            placeElement(group, row, i, count);
        }
    }

    /// An element of a run of bytes whose places are only known as a whole.
    void placeElement(int group, int row, unsigned index, unsigned count)
    {
        const FieldRow& run = m_rows[static_cast<size_t>(group)];
        FieldRow& element = m_rows[static_cast<size_t>(row)];
        const uint32_t size = element.field->getType().getWidth() / 8;
        if (element.size == 0 && size > 0 && run.size >= count * size) {
            element.offset = run.offset + index * size;
            element.size = size;
        }
    }

    void addSubMessage(const FieldInfo& field, const Message& message, unsigned index, int row,
                       const QString& path)
    {
        const Message* part = field.getValueUnchecked(&message, index).getSubMessage();
        if (!part)
            return;
        m_rows[static_cast<size_t>(row)].value = identityOf(*part);
        const QString expression = m_rows[static_cast<size_t>(row)].expression;
        addMessage(*part, row, path + '.', expression);
    }

    void addBitRanges(const FieldInfo& field, const Message& message, int parent,
                      const QString& path, const QString& expression)
    {
        for (const FieldInfo* part : field.getSubFieldInfos()) {
            if (!part->hasValue(&message))
                continue;
            const int row = add(*part, parent, part->getName(), path + part->getName(), expression);
            describe(row, *part, message, 0);
        }
    }

    int add(const FieldInfo& field, int parent, const QString& name, const QString& path,
            const QString& expression)
    {
        const int row = static_cast<int>(m_rows.size());
        FieldRow added;
        added.parent = parent;
        added.field = &field;
        added.name = name;
        added.path = path;
        added.expression = expression + ':' + field.getName();
        if (const FieldBytes* place = placeOf(path)) {
            added.offset = place->offset;
            added.size = place->size;
            added.lowestBit = place->lowestBit;
            added.bitCount = place->bitCount;
            added.meaning = place->meaning;
        }
        if (parent != FieldRow::none) {
            added.place = static_cast<int>(m_rows[static_cast<size_t>(parent)].children.size());
            m_rows[static_cast<size_t>(parent)].children.push_back(row);
            growTo(parent, added.offset, added.size);
        } else {
            added.place = m_roots++;
        }
        m_rows.push_back(std::move(added));
        return row;
    }

    const FieldBytes* placeOf(const QString& path) const
    {
        const FieldBytes* place = m_places.value(path, nullptr);
        return place ? place : m_places.value(path + "[0]", nullptr);
    }

    /// A group has the bytes from its first to its last element.
    void growTo(int parent, uint32_t offset, uint32_t size)
    {
        FieldRow& group = m_rows[static_cast<size_t>(parent)];
        if (size == 0 || group.size == 0 || offset < group.offset)
            return;
        if (offset + size > group.offset + group.size)
            group.size = offset + size - group.offset;
    }

    void describe(int row, const FieldInfo& field, const Message& message, unsigned index)
    {
        FieldRow& shown = m_rows[static_cast<size_t>(row)];
        const FieldValue value = field.getValueUnchecked(&message, index);
        shown.raw = value.toString();
        const QString* words = field.findSymbolicValue(value);
        shown.isAvailable = words || !field.isDoNotUse(value);
        if (!shown.isAvailable)
            return;
        shown.value = field.toScaledString(value);
        if (!words)
            shown.unit = m_log.unitOf(field);
    }

    const MessageLog& m_log;
    QHash<QString, const FieldBytes*> m_places;
    std::vector<FieldRow> m_rows;
    int m_roots = 0;
};

} // namespace

std::vector<FieldRow> fieldRowsOf(const MessageContent& content, const MessageLog& log)
{
    if (!content.message)
        return {};
    RowMaker maker(content, log);
    const MessageInfo& info = *content.message->getInfo();
    const QString format = info.getFormatInfo() ? info.getFormatInfo()->getName() : QString();
    maker.addMessage(*content.message, FieldRow::none, {}, format + ':' + info.getName());
    return maker.take();
}

bool isNumeric(const FieldInfo& field)
{
    return field.getType().isInteger() || field.getType().isFloat();
}

int rowAtByte(const std::vector<FieldRow>& rows, uint32_t offset)
{
    int found = FieldRow::none;
    uint32_t smallest = 0xffffffff;
    for (size_t i = 0; i < rows.size(); ++i) {
        const FieldRow& row = rows[i];
        // Among rows with the same bytes, the outer one, which comes first.
        if (offset < row.offset || offset - row.offset >= row.size || row.size >= smallest)
            continue;
        smallest = row.size;
        found = static_cast<int>(i);
    }
    return found;
}

QString identityOf(const Message& message)
{
    QStringList parts;
    const QVector<const FieldInfo*>& fields = message.getInfo()->getFieldInfos();
    for (int i = 0; i < fields.size(); ++i) {
        const FieldInfo& field = *fields[i];
        if (message.getInfo()->isIdentifying(i) && field.getRole() != FieldInfo::Reserved &&
            field.hasValue(&message))
            parts += field.getValueString(&message);
    }
    return parts.join(", ");
}

} // namespace tqx::view
