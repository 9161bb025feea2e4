// A whole process from start to its first published message: time it from outside.

#include "TQXDecoder.h"
#include "TQXSynchronizer.h"
#include "TQX_FormatInfo.h"
#include "TQX_codec.h"

#include <QObject>

#include <vector>

int main()
{
    Kor::MessageApi::TQX_PVTGeodetic2_s record;
    TQX_init_PVTGeodetic2(&record);
    std::vector<unsigned char> block(100);
    const int bits = TQX_encode_PVTGeodetic2(block.data(), 100, &record);
    QByteArray bytes(reinterpret_cast<const char*>(block.data()), bits / 8);

    TQX_FormatInfo::getInstance();
    TQXSynchronizer synchronizer;
    TQXDecoder decoder(nullptr);
    int published = 0;
    QObject::connect(&decoder, &MessageSource::newMessage, [&published] { ++published; });
    synchronizer.appendBytes(bytes);
    while (synchronizer.hasBlock()) {
        const QByteArray next = synchronizer.getBlockBytes();
        decoder.decodeMessage(reinterpret_cast<const uint8_t*>(next.constData()),
                              static_cast<uint32_t>(next.size()));
    }
    return published == 1 ? 0 : 1;
}
