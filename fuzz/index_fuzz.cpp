// Input of an index from outside. By the first byte: a saved index, which is refused or answers
// every query; a log, whose stretches give the same as one pass; a compressed log, which may end in
// an error and is the same wherever reading begins.

#include "FixedChecksums.h"
#include "tqx/log/DataError.h"
#include "tqx/log/index/Crc32.h"
#include "tqx/log/index/IndexedBlocks.h"
#include "tqx/log/index/SavedIndex.h"
#include "tqx/log/index/SavedIndexFormat.h"
#include "tqx/log/source/CompressedAccess.h"
#include "tqx/log/source/CompressedSource.h"
#include "tqx/log/source/MemorySource.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace
{

using namespace tqx;
using Bytes = std::vector<uint8_t>;

void require(bool condition)
{
    if (!condition)
        std::abort();
}

void ask(const Index& index, const RandomAccess& log)
{
    index.getCounts();
    index.getWeekStarts();
    index.getFirstTime();
    index.getLastTime();
    for (const BlockQuery& query : {BlockQuery(), BlockQuery{{4007}, 5, 1000000000000}}) {
        try {
            IndexedBlocks blocks(index, log, query);
            for (Block block = {}; blocks.next(block);)
                blocks.getContext();
        } catch (const SourceError&) {
            // The log is not the index's.
        }
    }
}

void readSaved(const uint8_t* data, size_t size)
{
    // A fuzzer cannot guess checksums.
    Bytes saved(data, data + size);
    if (saved.size() >= 16) {
        korcg_store_u32(&saved[0], SavedIndexFormat::signature);
        korcg_store_u32(&saved[4], SavedIndexFormat::version);
        korcg_store_u32(&saved[8], SavedIndexFormat::knownNumbers());
        const size_t end = saved.size() - 4;
        korcg_store_u32(&saved[end], crc32(saved.data(), end));
    }
    std::string reason;
    std::optional<SavedIndex> read = unpackIndex(saved.data(), saved.size(), reason);
    require(read || !reason.empty());
    if (!read)
        return;
    const Bytes packed = packIndex(*read);
    const std::optional<SavedIndex> again = unpackIndex(packed.data(), packed.size(), reason);
    require(again && again->index.getPages().rows == read->index.getPages().rows);
    require(packIndex(*again) == packed);

    const Bytes zeros(200000);
    const MemoryAccess log(zeros.data(), zeros.size());
    ask(read->index, log);
    if (read->compression != Compression::None) {
        const CompressedAccess content(log, read->compression, read->points,
                                       read->index.getLogSize());
        ask(read->index, content);
    }
    read->index.extend(log);
    ask(read->index, log);
}

void frame(const uint8_t* data, size_t size)
{
    if (size < 2)
        return;
    const uint32_t pageSize = 16U << data[0] % 9;
    const unsigned stretches = 2U + data[1] % 63;
    const Bytes bytes = withChecksums(data + 2, size - 2);
    const MemoryAccess log(bytes.data(), bytes.size());
    const Index whole = Index::build(log, {}, pageSize);
    const Index parts = Index::build(log, {1, stretches}, pageSize);
    require(whole.getPages().rows == parts.getPages().rows);
    require(whole.getPages().marks == parts.getPages().marks);
    IndexedBlocks blocks(whole, log);
    IndexedBlocks others(parts, log);
    for (Block block = {}, other = {}; blocks.next(block);)
        require(others.next(other) && other.offset == block.offset);
}

void decompress(const uint8_t* data, size_t size)
{
    const Compression compression = compressionOf(data, size);
    if (compression == Compression::None)
        return;
    constexpr size_t most = 1 << 24;
    Bytes content;
    CompressedSource source(std::make_unique<MemorySource>(data, size), compression);
    try {
        Bytes piece(10000);
        while (const size_t count = source.read(piece.data(), piece.size())) {
            content.insert(content.end(), piece.begin(),
                           piece.begin() + static_cast<std::ptrdiff_t>(count));
            if (content.size() > most)
                return;
        }
    } catch (const SourceError&) {
    }
    const MemoryAccess packed(data, size);
    const CompressedAccess access(packed, compression, {}, content.size());
    Bytes again(content.size() / 2);
    again.resize(access.readAt(content.size() - again.size(), again.data(), again.size()));
    require(std::equal(again.rbegin(), again.rend(), content.rbegin()));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0)
        return 0;
    switch (data[0] % 3) {
    case 0:
        readSaved(data + 1, size - 1);
        break;
    case 1:
        frame(data + 1, size - 1);
        break;
    default:
        decompress(data + 1, size - 1);
    }
    return 0;
}
