#include "PathExpression.h"

#include "FormatInfo.h"
#include "MessageApiEvent.h"

#include <QStringList>

namespace
{

[[noreturn]] void throwUnknown(const QString& text, const QString& path, const FormatInfo* format)
{
    throw MessageApiEvent(MessageApiEvent::FieldAccess,
                          QStringLiteral("%1 in the path \"%2\".").arg(text, path), format);
}

const FieldInfo* findInside(const FieldInfo* field, const QString& name)
{
    if (const MessageInfo* inner = field->getType().getSubMessageInfo()) {
        return inner->getFieldInfo(name);
    }
    for (const FieldInfo* subField : field->getSubFieldInfos()) {
        if (subField->getName() == name) {
            return subField;
        }
    }
    return nullptr;
}

} // namespace

const FieldInfo* PathExpression::getUniqueFieldInfo(const QString& path)
{
    const QStringList parts = path.split(QLatin1Char(':'));
    if (parts.size() < 3) {
        throwUnknown(QStringLiteral("FORMAT:MESSAGE:FIELD is expected, not found"), path, nullptr);
    }
    const FormatInfo* format = FormatInfo::getFormat(parts[0]);
    if (!format) {
        throwUnknown(QStringLiteral("Unknown format \"%1\"").arg(parts[0]), path, nullptr);
    }
    const MessageInfo* message = format->getMessageInfo(parts[1]);
    if (!message) {
        throwUnknown(QStringLiteral("Unknown message \"%1\"").arg(parts[1]), path, format);
    }
    const FieldInfo* field = message->getFieldInfo(parts[2]);
    for (int i = 3; field && i < parts.size(); ++i) {
        field = findInside(field, parts[i]);
    }
    return field;
}
