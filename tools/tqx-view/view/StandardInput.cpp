#include "view/StandardInput.h"

#include "tqx/log/DataError.h"
#include "tqx/log/source/FileSource.h"
#include "tqx/log/source/OpenSource.h"

#include <QDir>
#include <QTemporaryFile>

#include <cstdio>
#include <memory>
#include <thread>
#include <vector>

namespace tqx::view
{

namespace
{

std::unique_ptr<QTemporaryFile>& spool()
{
    static std::unique_ptr<QTemporaryFile> file;
    return file;
}

/// Pieces are small, because a source returns once a piece is full.
void copy(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered))
        return;
    try {
        const std::unique_ptr<ByteSource> source =
            decompressed(std::make_unique<FileSource>(stdin, "standard input"));
        std::vector<uint8_t> piece(512);
        while (const size_t got = source->read(piece.data(), piece.size())) {
            if (file.write(reinterpret_cast<const char*>(piece.data()), static_cast<qint64>(got)) <
                0)
                return;
        }
    } catch (const DataError& error) {
        std::fprintf(stderr, "tqx-view: %s\n", error.what());
    }
}

} // namespace

QString StandardInput::path()
{
    if (!spool()) {
        spool() = std::make_unique<QTemporaryFile>(QDir::tempPath() + "/tqx-view-XXXXXX.tqx");
        if (!spool()->open())
            return {};
        // Nobody can wait for a pipe to end when the window is closed.
        std::thread(copy, spool()->fileName()).detach();
    }
    return spool()->fileName();
}

QString StandardInput::pathIfOpen()
{
    return spool() ? spool()->fileName() : QString();
}

} // namespace tqx::view
