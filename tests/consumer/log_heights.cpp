#include <FieldInfo.h>
#include <Message.h>
#include <PathExpression.h>
#include <TQXDecoder.h>
#include <TQXSynchronizer.h>
#include <TQX_FormatInfo.h>

#include <QFile>
#include <cstdio>

int main(int, char** argv)
{
    TQX_FormatInfo::getInstance(); // the registry comes first
    const FieldInfo* height = PathExpression::getUniqueFieldInfo("TQX:PVTGeodetic2:Height");

    TQXDecoder decoder;
    QObject::connect(&decoder, &TQXDecoder::newMessage, [height](const Message* message) {
        if (height->hasValue(message))
            std::puts(qUtf8Printable(height->getValueString(message)));
    });

    QFile log(argv[1]);
    if (!log.open(QIODevice::ReadOnly))
        return 1;
    TQXSynchronizer synchroniser;
    while (!log.atEnd()) {
        QByteArray piece = log.read(65536);
        synchroniser.appendBytes(piece);
        while (synchroniser.hasBlock()) {
            const QByteArray block = synchroniser.getBlockBytes();
            decoder.decodeMessage(reinterpret_cast<const uint8_t*>(block.constData()),
                                  static_cast<uint32_t>(block.size()));
        }
    }
}
