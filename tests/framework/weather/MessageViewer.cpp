#include "MessageViewer.h"

#include <FormatInfo.h>
#include <Message.h>

QStringList viewMessage(const Message& message, int depth)
{
    const QString indent(2 * depth, QLatin1Char(' '));
    const MessageInfo* info = message.getInfo();
    QStringList lines{indent + info->getFormatInfo()->getName() + QLatin1Char(' ') +
                      info->getName()};
    const auto& fields = info->getFieldInfos();
    for (int i = 0; i < fields.size(); ++i) {
        const FieldInfo* field = fields[i];
        if (!field->hasValue(&message) || field->getRole() == FieldInfo::Structure) {
            continue;
        }
        if (field->getType().getKind() != FieldKind::SubMessage) {
            const QString mark = info->isIdentifying(i) ? QStringLiteral("*") : QString();
            lines += indent + mark + field->getName() + QStringLiteral(": ") +
                     field->getValueString(&message);
            continue;
        }
        for (unsigned k = 0; k < field->getNumberOfValues(&message); ++k) {
            lines += viewMessage(*field->getValue(&message, k).getSubMessage(), depth + 1);
        }
    }
    return lines;
}
