// read_sources LOG...
//
// Reads logs, plain or compressed, in both ways: in order as a source, and with random access,
// printing the middle byte of each. Last, all of them as one.

#include "tqx/log/DataError.h"
#include "tqx/log/source/CompressedAccess.h"
#include "tqx/log/source/CompressedSource.h"
#include "tqx/log/source/FileAccess.h"
#include "tqx/log/source/FileSource.h"
#include "tqx/log/source/JoinedAccess.h"
#include "tqx/log/source/JoinedSource.h"
#include "tqx/log/source/MemorySource.h"

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace
{

unsigned long long countBytes(tqx::ByteSource& source)
{
    std::vector<uint8_t> piece(1 << 16);
    unsigned long long count = 0;
    while (const size_t size = source.read(piece.data(), piece.size()))
        count += size;
    return count;
}

void show(const char* kind, const tqx::RandomAccess& content)
{
    uint8_t middle = 0;
    content.readAt(content.getSize() / 2, &middle, 1);
    std::printf("%s, %llu bytes, middle byte %u\n", kind,
                static_cast<unsigned long long>(content.getSize()), middle);
}

} // namespace

int main(int argc, char** argv)
{
    const std::vector<std::string> paths(argv + 1, argv + argc);
    try {
        std::vector<std::unique_ptr<tqx::FileAccess>> files;
        std::vector<std::unique_ptr<tqx::CompressedAccess>> unpacked;
        std::vector<const tqx::RandomAccess*> contents;
        for (const std::string& path : paths) {
            files.push_back(std::make_unique<tqx::FileAccess>(path));
            uint8_t first[4] = {};
            const size_t count = files.back()->readAt(0, first, sizeof first);
            const tqx::Compression compression = tqx::compressionOf(first, count);
            if (compression == tqx::Compression::None) {
                contents.push_back(files.back().get());
                show("plain", *contents.back());
                continue;
            }
            // One pass finds the size, and where decompressing can begin.
            std::vector<tqx::AccessPoint> points;
            tqx::CompressedSource source(std::make_unique<tqx::FileSource>(path), compression,
                                         &points);
            const unsigned long long size = countBytes(source);
            unpacked.push_back(
                std::make_unique<tqx::CompressedAccess>(*files.back(), compression, points, size));
            contents.push_back(unpacked.back().get());
            show(tqx::Decompressor::make(compression)->getFormat(), *contents.back());
        }
        show("together", tqx::JoinedAccess(contents));

        // In order: an unreadable one would be reported and skipped.
        tqx::JoinedSource all(paths, [](const tqx::SourceError& error) {
            std::fprintf(stderr, "%s\n", error.what());
        });
        std::printf("in order, %llu bytes\n", countBytes(all));

        // Bytes in memory are a source, too.
        const uint8_t bytes[] = {'$', '@', 1, 2, 3};
        tqx::MemorySource memory(bytes, sizeof bytes);
        memory.skip(2);
        std::printf("in memory, %llu bytes after two\n", countBytes(memory));
    } catch (const tqx::DataError& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
