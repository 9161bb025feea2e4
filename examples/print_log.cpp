// print_log LOG
//
// Prints every message of a log as a viewer would show it: everything it needs to know comes from
// the metadata, so no message type is named here.

#include "LogReader.h"

#include <FieldInfo.h>
#include <Message.h>
#include <MessageInfo.h>
#include <TQXDecoder.h>
#include <TQX_FormatInfo.h>

#include <cstdio>

namespace
{

void print(int depth, const QString& text)
{
    std::printf("%*s%s\n", 2 * depth, "", qUtf8Printable(text));
}

void printFields(const Message& message, int depth)
{
    for (const FieldInfo* field : message.getInfo()->getFieldInfos()) {
        // Counts, lengths, padding and the like carry no measurements.
        const bool isSubMessage = field->getType().getKind() == FieldKind::SubMessage;
        if ((field->getRole() != FieldInfo::Data && !isSubMessage) || !field->hasValue(&message))
            continue;
        if (!isSubMessage) {
            print(depth, field->getName() + ": " + field->getValueString(&message));
            continue;
        }
        const unsigned count = field->getNumberOfValues(&message);
        for (unsigned i = 0; i < count; ++i) {
            print(depth, field->isRepeated() ? QString("%1 %2").arg(field->getName()).arg(i + 1)
                                             : field->getName());
            printFields(*field->getValue(&message, i).getSubMessage(), depth + 1);
        }
    }
}

void printMessage(const Message* message)
{
    const MessageInfo& info = *message->getInfo();
    print(0, info.getName() + ": " + info.getShortDescriptiveText());
    printFields(*message, 1);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: print_log LOG\n");
        return 1;
    }
    TQX_FormatInfo::getInstance(); // the registry comes first
    TQXDecoder decoder;
    QObject::connect(&decoder, &TQXDecoder::newMessage, printMessage);
    return readLog(QString::fromLocal8Bit(argv[1]), decoder) ? 0 : 1;
}
