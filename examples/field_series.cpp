// field_series LOG PATH
//
// Prints a field as a time series: GNSS time as week and seconds, a tab, the value. PATH names the
// field, such as TQX:PVTGeodetic2:Height or TQX:MeasEpoch2:Type1:CN0.

#include "LogReader.h"

#include <FieldInfo.h>
#include <Message.h>
#include <MessageApiEvent.h>
#include <MessageInfo.h>
#include <PathExpression.h>
#include <TQXDecoder.h>
#include <TQXUtils.h>
#include <TQX_FormatInfo.h>

#include <cstdint>
#include <cstdio>

namespace
{

/// The field, or null after a message on standard error.
const FieldInfo* findField(const QString& path)
{
    try {
        if (const FieldInfo* field = PathExpression::getUniqueFieldInfo(path))
            return field;
        std::fprintf(stderr, "There is no field \"%s\".\n", qUtf8Printable(path));
    } catch (const MessageApiEvent& event) {
        std::fprintf(stderr, "%s\n", qUtf8Printable(event.getText()));
    }
    return nullptr;
}

QString timeOf(const Message& message)
{
    const uint16_t week = TQXUtils::getWNc(&message);
    const uint32_t millis = TQXUtils::getTOW(&message);
    if (week == TQXUtils::invalidWNc || millis == TQXUtils::invalidTOW)
        return QString("-");
    return QString("%1:%2").arg(week).arg(millis / 1000.0, 0, 'f', 3);
}

/// The field may belong to the message itself or to one anywhere inside it.
void printValues(const FieldInfo& field, const Message& message, const QString& time)
{
    if (field.hasValue(&message)) {
        std::printf("%s\t%s\n", qUtf8Printable(time),
                    qUtf8Printable(field.getValueString(&message)));
    }
    for (const Message* part : message.getSubMessages())
        printValues(field, *part, time);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fprintf(stderr, "usage: field_series LOG PATH\n");
        return 1;
    }
    TQX_FormatInfo::getInstance(); // the registry comes first
    const QString path = QString::fromLocal8Bit(argv[2]);
    const FieldInfo* field = findField(path);
    if (!field)
        return 1;

    TQXDecoder decoder;
    const MessageInfo* type =
        TQX_FormatInfo::getInstance()->getMessageInfo(path.section(QChar(':'), 1, 1));
    if (type->isMain()) { // other types need not be decoded then
        decoder.disableAllMessages();
        decoder.enableMessage(type);
    }
    QObject::connect(&decoder, &TQXDecoder::newMessage, [field](const Message* message) {
        printValues(*field, *message, timeOf(*message));
    });
    return readLog(QString::fromLocal8Bit(argv[1]), decoder) ? 0 : 1;
}
