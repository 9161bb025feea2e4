// Indexes that are saved beside their logs.

#include "Packed.h"
#include "TemporaryFolder.h"
#include "TimedBlocks.h"
#include "tqx/log/index/IndexedLog.h"
#include "tqx/log/index/SavedIndex.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace
{

using namespace tqx;

using Warnings = std::vector<std::string>;

IndexedLogOptions saving(Warnings& warnings)
{
    IndexedLogOptions options;
    options.save = true;
    options.onWarning = [&](const std::string& warning) { warnings.push_back(warning); };
    return options;
}

/// Blocks with their own times, some junk between them.
Bytes someLog(unsigned blocks, unsigned first = 0)
{
    Bytes log;
    for (unsigned i = first; i < first + blocks; ++i) {
        const uint16_t id = i % 3 == 0 ? 4007 : 4027;
        const Bytes next = timedBlock(id, i * 500, 2000, 200 + i % 100);
        log.insert(log.end(), next.begin(), next.end());
        if (i % 50 == 0)
            log.insert(log.end(), {'j', 'u', 'n', 'k'});
    }
    return log;
}

/// The offsets of the blocks of a query and the sum of all their bytes.
std::vector<uint64_t> found(const IndexedLog& log, const BlockQuery& query)
{
    std::vector<uint64_t> offsets(1);
    IndexedBlocks blocks = log.find(query);
    for (Block block; blocks.next(block);) {
        offsets.push_back(block.offset);
        for (size_t i = 0; i < block.size; ++i)
            offsets[0] += block.data[i];
    }
    return offsets;
}

bool sameIndex(const Index& left, const Index& right)
{
    const auto types = [](const Index& index) {
        std::vector<FramedPages::Type> all = index.getPages().types;
        std::sort(all.begin(), all.end(),
                  [](const auto& one, const auto& other) { return one.number < other.number; });
        return all;
    };
    const auto isEqual = [](const auto& one, const auto& other) {
        return one.number == other.number && one.offsets == other.offsets;
    };
    const auto leftTypes = types(left);
    const auto rightTypes = types(right);
    return left.getLogSize() == right.getLogSize() &&
           left.getPages().rows == right.getPages().rows &&
           left.getPages().marks == right.getPages().marks &&
           left.getPages().exit == right.getPages().exit &&
           std::equal(leftTypes.begin(), leftTypes.end(), rightTypes.begin(), rightTypes.end(),
                      isEqual);
}

TEST(SavedIndex, IsUsedExtendedOrMadeAnewAsTheLogIs)
{
    const Bytes start = cut(someLog(2000), 400000);
    const Bytes more = someLog(2000);
    Bytes changed = more;
    changed.back() ^= 1;
    using Origin = IndexedLog::Origin;
    const struct {
        const char* name;
        Bytes before;
        Bytes after;
        Origin origin;
        size_t warnings;
    } rows[] = {
        {"the same", start, start, Origin::Saved, 0},
        {"empty", {}, {}, Origin::Saved, 0},
        {"longer", start, more, Origin::Extended, 0},
        {"no longer empty", {}, start, Origin::Extended, 0},
        {"shorter", more, start, Origin::Made, 1},
        {"another end", more, changed, Origin::Made, 1},
        {"another start", more, flipped(more, 5), Origin::Made, 1},
        {"longer with another start", start, flipped(more, 5), Origin::Made, 1},
        {"now compressed", start, gzipped(start), Origin::Made, 1},
        {"gzip", gzipped(start), gzipped(start), Origin::Saved, 0},
        {"zstd", zstdFrame(start), zstdFrame(start), Origin::Saved, 0},
        {"longer gzip", gzipped(start), gzipped(start) + gzipped(more), Origin::Made, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const TemporaryFolder folder;
        Warnings warnings;
        const std::string path = folder.write("log", row.before);
        EXPECT_TRUE(IndexedLog(path, saving(warnings)).isSaved());
        EXPECT_EQ(warnings, Warnings());

        folder.write("log", row.after);
        const IndexedLog log(path, saving(warnings));
        EXPECT_EQ(log.getOrigin(), row.origin);
        EXPECT_EQ(log.isSaved(), row.origin != Origin::Saved);
        ASSERT_EQ(warnings.size(), row.warnings);
        if (row.warnings != 0) {
            EXPECT_EQ(warnings[0], path + ".tqxi: is not used: it is the index of another log");
        }
        const std::string other = folder.write("other", row.after);
        const IndexedLog anew(other);
        EXPECT_EQ(anew.getOrigin(), Origin::Made);
        EXPECT_TRUE(sameIndex(log.getIndex(), anew.getIndex()));
        EXPECT_EQ(found(log, {}), found(anew, {}));
        EXPECT_EQ(found(log, {{4007}, 2000 * millisPerWeek + 100000}),
                  found(anew, {{4007}, 2000 * millisPerWeek + 100000}));
        const IndexedLog again(path);
        EXPECT_EQ(again.getOrigin(), Origin::Saved);
    }
}

TEST(SavedIndex, OfACompressedLogThatIsCutOffSaysSoEachTime)
{
    const TemporaryFolder folder;
    const Bytes content = someLog(3000);
    const Bytes packed = gzipped(content);
    const std::string path = folder.write("log", cut(packed, packed.size() / 2));
    const std::string expected =
        path + ": " + std::to_string(packed.size() / 2) + ": the gzip stream ends too early";
    for (int i = 0; i < 2; ++i) {
        Warnings warnings;
        const IndexedLog log(path, saving(warnings));
        EXPECT_EQ(warnings, Warnings{expected});
        EXPECT_GT(log.getIndex().getCounts().blocks, 1000U);
        EXPECT_EQ(found(log, {}).size(), log.getIndex().getCounts().blocks + 1);
    }
}

TEST(SavedIndex, ThatIsDamagedIsMadeAnewWithOneWarning)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("log", someLog(300));
    Warnings warnings;
    const IndexedLog made(path, saving(warnings));
    const Bytes saved = folder.read("log.tqxi");
    std::mt19937 random(1);
    for (unsigned i = 0; i < 200; ++i) {
        SCOPED_TRACE(i);
        const size_t at = random() % saved.size();
        folder.write("log.tqxi", i % 2 == 0 ? flipped(saved, at) : cut(saved, at));
        warnings.clear();
        const IndexedLog log(path, saving(warnings));
        EXPECT_EQ(log.getOrigin(), IndexedLog::Origin::Made);
        ASSERT_EQ(warnings.size(), 1U);
        EXPECT_EQ(warnings[0].rfind(path + ".tqxi: is not used, ", 0), 0U) << warnings[0];
        EXPECT_TRUE(folder.read("log.tqxi") == saved);
    }
}

TEST(SavedIndex, NeedsNoFolderThatCanBeWritten)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("log", someLog(10));
    // Nothing can be renamed to a folder that is not empty.
    std::filesystem::create_directories(folder.fileName("log.tqxi") + "/in the way");
    Warnings warnings;
    const IndexedLog log(path, saving(warnings));
    EXPECT_FALSE(log.isSaved());
    EXPECT_EQ(log.getIndex().getCounts().blocks, 10U);
    EXPECT_FALSE(std::filesystem::exists(folder.fileName("log.tqxi.new")));
}

TEST(SavedIndex, TakesFewBytesABlock)
{
    const Bytes log = someLog(20000);
    const MemoryAccess access(log.data(), log.size());
    const SavedIndex saved = {
        LogIdentity::of(access), Compression::None, {}, {}, Index::build(access)};
    EXPECT_LT(static_cast<double>(packIndex(saved).size()) / 20000, 2.6);
}

} // namespace
