#include "LogReader.h"

#include <TQXDecoder.h>
#include <TQXSynchronizer.h>

#include <QFile>

#include <cstdint>
#include <cstdio>

namespace
{

void decodeBlocks(TQXSynchronizer& synchroniser, TQXDecoder& decoder)
{
    while (synchroniser.hasBlock()) {
        const QByteArray block = synchroniser.getBlockBytes();
        decoder.decodeMessage(reinterpret_cast<const uint8_t*>(block.constData()),
                              static_cast<uint32_t>(block.size()));
    }
}

} // namespace

bool readLog(const QString& path, TQXDecoder& decoder)
{
    QFile log(path);
    TQXSynchronizer synchroniser;
    if (log.open(QIODevice::ReadOnly)) {
        for (QByteArray piece = log.read(65536); !piece.isEmpty(); piece = log.read(65536)) {
            synchroniser.appendBytes(piece);
            decodeBlocks(synchroniser, decoder);
        }
        // What looked like the start of an incomplete block may hide a complete one.
        synchroniser.flush();
        decodeBlocks(synchroniser, decoder);
    }
    if (log.error() == QFileDevice::NoError)
        return true;
    std::fprintf(stderr, "%s: %s\n", qUtf8Printable(path), qUtf8Printable(log.errorString()));
    return false;
}
