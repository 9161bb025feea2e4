// What is read by an index is what one pass gives.

#include "TemporaryFolder.h"
#include "TimedBlocks.h"
#include "tqx/framing/BlockFramer.h"
#include "tqx/log/DataError.h"
#include "tqx/log/index/IndexedBlocks.h"
#include "tqx/log/source/FileAccess.h"
#include "tqx/log/source/JoinedAccess.h"
#include "tqx/log/source/MemorySource.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <memory>

namespace
{

using namespace tqx;
using Kor::MessageApi::TQX_AnyRecord_u;
using Kor::MessageApi::TQX_Context_s;
using Kor::MessageApi::TQX_MainHeader_s;

#ifdef TQX_FEW_STREAMS
constexpr unsigned streams = 100;
#else
constexpr unsigned streams = 1000;
#endif

class UnmappedAccess : public MemoryAccess
{
public:
    using MemoryAccess::MemoryAccess;
    const uint8_t* getBytes() const override { return nullptr; }
};

/// A block as a pass over a log gives it.
struct Passed {
    uint64_t offset;
    uint16_t number;
    Bytes bytes;
    std::optional<GnssMillis> time; ///< its own or that of the last block before that has one
    int32_t result;                 ///< of decoding
    uint32_t continuousTime;
};

bool operator==(const Passed& left, const Passed& right)
{
    return left.offset == right.offset && left.bytes == right.bytes &&
           left.result == right.result && left.continuousTime == right.continuousTime;
}

/// Decodes with a context that is carried from block to block.
class Decoder
{
public:
    Decoder() { TQX_init_context(&context); }

    void decode(const Block& block, Passed& passed)
    {
        passed.offset = block.offset;
        passed.number = block.getNumber();
        passed.bytes.assign(block.data, block.data + block.size);
        auto* header = reinterpret_cast<TQX_MainHeader_s*>(m_record.get());
        *header = {};
        passed.result = TQX_decode(&context, block.data, block.size, m_record.get());
        passed.continuousTime = header->TOWc;
        TQX_release(m_record.get());
    }

    TQX_Context_s context;

private:
    std::unique_ptr<TQX_AnyRecord_u> m_record{new TQX_AnyRecord_u};
};

struct Pass {
    explicit Pass(const Bytes& log)
    {
        MemorySource source(log.data(), log.size());
        BlockStream stream(source);
        Decoder decoder;
        std::optional<GnssMillis> time;
        for (Block block; stream.next(block);) {
            Passed passed = {};
            const uint8_t week = decoder.context.weekCounter;
            decoder.decode(block, passed);
            if (decoder.context.weekCounter != week)
                weekStarts.push_back(block.offset);
            if (block.getTime())
                time = block.getTime();
            passed.time = time;
            blocks.push_back(passed);
        }
    }

    std::vector<Passed> blocks;
    std::vector<uint64_t> weekStarts;
};

/// What framing finds between the blocks.
class Damage : private BlockFramer::Listener
{
public:
    /// Offset, size, checksum errors, invalid lengths, whether the end of the log cuts it off.
    using Gap = std::array<uint64_t, 5>;

    explicit Damage(const Bytes& log)
    {
        BlockFramer framer(this);
        framer.append(log.data(), log.size());
        takeBlocks(framer);
        const bool isCut = framer.bytesLeft() != 0;
        framer.flush();
        takeBlocks(framer);
        for (Gap& gap : gaps) {
            const auto isIn = [&](uint64_t offset) {
                return offset >= gap[0] && offset < gap[0] + gap[1];
            };
            gap[2] = static_cast<uint64_t>(std::count_if(crcErrors.begin(), crcErrors.end(), isIn));
            gap[3] = static_cast<uint64_t>(
                std::count_if(invalidLengths.begin(), invalidLengths.end(), isIn));
            gap[4] = isCut && gap[0] + gap[1] == log.size();
            dropped += gap[1];
        }
    }

    std::vector<Gap> gaps;
    std::vector<uint64_t> crcErrors;
    std::vector<uint64_t> invalidLengths;
    uint64_t dropped = 0;

private:
    static void takeBlocks(BlockFramer& framer)
    {
        while (framer.hasBlock())
            framer.takeBlock();
    }

    void onChecksumFailed(uint64_t offset) override { crcErrors.push_back(offset); }
    void onInvalidLength(uint64_t offset) override { invalidLengths.push_back(offset); }
    void onBytesDropped(uint64_t offset, uint64_t count) override
    {
        if (!gaps.empty() && gaps.back()[0] + gaps.back()[1] == offset) {
            gaps.back()[1] += count;
        } else {
            gaps.push_back({offset, count});
        }
    }
};

/// The blocks of a query, each decoded with a context of its own.
std::vector<Passed> readAlone(const Index& index, const RandomAccess& log, const BlockQuery& query)
{
    std::vector<Passed> found;
    IndexedBlocks blocks(index, log, query);
    for (Block block; blocks.next(block);) {
        Decoder decoder;
        blocks.getContext().applyTo(decoder.context);
        found.push_back({});
        decoder.decode(block, found.back());
    }
    return found;
}

/// All blocks, decoded page by page from the context at the start of each.
std::vector<Passed> readByPages(const Index& index, const RandomAccess& log)
{
    std::vector<Passed> found;
    for (uint32_t page = 0; page < index.getPageCount(); ++page) {
        Decoder decoder;
        index.getPageContext(page).applyTo(decoder.context);
        IndexedBlocks blocks(index, log, {{}, {}, {}, page, page + 1});
        for (Block block; blocks.next(block);) {
            EXPECT_GE(block.offset, index.getPageEntry(page));
            EXPECT_LT(block.offset, index.getPageEntry(page + 1));
            found.push_back({});
            decoder.decode(block, found.back());
        }
    }
    return found;
}

/// All blocks of a stream, each decoded with a context of its own.
std::vector<Passed> streamedAlone(const Bytes& log)
{
    std::vector<Passed> found;
    MemorySource source(log.data(), log.size());
    BlockStream stream(source);
    for (Block block; stream.next(block);) {
        Decoder decoder;
        stream.getContext().applyTo(decoder.context);
        found.push_back({});
        decoder.decode(block, found.back());
    }
    return found;
}

std::vector<Passed> selected(const Pass& pass, const BlockQuery& query)
{
    std::vector<Passed> wanted;
    for (const Passed& block : pass.blocks) {
        const auto& numbers = query.numbers;
        const bool isType =
            numbers.empty() || std::count(numbers.begin(), numbers.end(), block.number) != 0;
        const bool isLate = !query.from || (block.time.has_value() && *block.time >= *query.from);
        const bool isEarly = !query.to || !block.time || *block.time < *query.to;
        if (isType && isLate && isEarly)
            wanted.push_back(block);
    }
    return wanted;
}

BlockQuery randomQuery(const Pass& pass, std::mt19937& random)
{
    BlockQuery query;
    if (random() % 4 != 0)
        query.numbers = {static_cast<uint16_t>(4007)};
    if (random() % 2 == 0)
        query.numbers.push_back(random() % 2 == 0 ? 4027 : 8191);
    for (std::optional<GnssMillis>* limit : {&query.from, &query.to}) {
        if (random() % 3 != 0 && !pass.blocks.empty()) {
            const auto time = pass.blocks[random() % pass.blocks.size()].time;
            *limit = time.value_or(5) + random() % 3;
        }
    }
    return query;
}

TEST(Index, GivesWhatOnePassGives)
{
    for (unsigned seed = 0; seed < streams; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        Bytes log = hostileLog(random);
        for (unsigned more = random() % 4; more != 0; --more)
            log = log + hostileLog(random);
        const Pass pass(log);
        const MemoryAccess mapped(log.data(), log.size());
        const UnmappedAccess unmapped(log.data(), log.size());
        const RandomAccess& access =
            random() % 2 == 0 ? static_cast<const RandomAccess&>(mapped) : unmapped;
        const uint32_t pageSize = 16U << random() % 8;
        const Index index = Index::build(access, {1, 1 + unsigned(random() % 5)}, pageSize);

        const Damage damage(log);
        const StreamCounts counts = index.getCounts();
        EXPECT_EQ(counts.bytes, log.size());
        EXPECT_EQ(counts.blocks, pass.blocks.size());
        EXPECT_EQ(counts.droppedBytes, damage.dropped);
        EXPECT_EQ(counts.crcErrors, damage.crcErrors.size());
        EXPECT_EQ(counts.invalidLengths, damage.invalidLengths.size());
        EXPECT_EQ(index.getChecksumErrors(), damage.crcErrors);
        EXPECT_EQ(index.getInvalidLengths(), damage.invalidLengths);
        std::vector<Damage::Gap> gaps;
        index.visitGaps([&](const StreamGap& gap) {
            gaps.push_back({gap.offset, gap.bytes, gap.crcErrors, gap.invalidLengths, gap.isCut});
        });
        EXPECT_EQ(gaps, damage.gaps);

        ASSERT_EQ(index.getWeekStarts(), pass.weekStarts);
        ASSERT_TRUE(readByPages(index, access) == pass.blocks);
        ASSERT_TRUE(readAlone(index, access, {}) == pass.blocks);
        ASSERT_TRUE(streamedAlone(log) == pass.blocks);
        const BlockQuery query = randomQuery(pass, random);
        ASSERT_TRUE(readAlone(index, access, query) == selected(pass, query));
    }
}

TEST(Index, WeeksAreCarriedAcrossEveryCut)
{
    constexpr uint32_t lateTow = 604790000;
    const size_t count = 12;
    const size_t size = timedBlock(4007, 0, 0).size();
    for (size_t rollover = 0; rollover <= count; ++rollover) {
        SCOPED_TRACE(rollover);
        Bytes log;
        for (size_t i = 0; i < count; ++i) {
            const auto step = static_cast<uint32_t>(1000 * i);
            log = log + (i < rollover ? timedBlock(4007, lateTow + step, 100)
                                      : timedBlock(4027, step, 101));
        }
        const Pass pass(log);
        const uint32_t expected = rollover != 0 && rollover != count ? 604800000 + 11000 : 0;
        if (expected != 0) {
            EXPECT_EQ(pass.blocks.back().continuousTime, expected);
        }
        const MemoryAccess access(log.data(), log.size());
        for (const auto pageSize : {static_cast<uint32_t>(size), 32U, 64U, 65536U}) {
            const Index index = Index::build(access, {1, 5}, pageSize);
            EXPECT_TRUE(readByPages(index, access) == pass.blocks);
            EXPECT_TRUE(readAlone(index, access, {}) == pass.blocks);
            EXPECT_TRUE(readAlone(index, access, {{4027}}) == selected(pass, {{4027}}));
        }
    }
}

TEST(Index, GoesOnWithALogThatHasGrown)
{
    for (unsigned seed = 0; seed < streams; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const Bytes log = hostileLog(random) + hostileLog(random);
        const MemoryAccess whole(log.data(), log.size());
        const uint32_t pageSize = 16U << random() % 8;
        const Index anew = Index::build(whole, {}, pageSize);
        const MemoryAccess start(log.data(), random() % (log.size() + 1));
        Index index = Index::build(start, {}, pageSize);
        const size_t more = start.getSize() + random() % (log.size() + 1 - start.getSize());
        index.extend(MemoryAccess(log.data(), more));
        index.extend(whole, {1, 3});
        ASSERT_EQ(index.getLogSize(), log.size());
        ASSERT_TRUE(index.getPages().rows == anew.getPages().rows);
        ASSERT_TRUE(index.getPages().marks == anew.getPages().marks);
        ASSERT_TRUE(readAlone(index, whole, {}) == readAlone(anew, whole, {}));
    }
}

/// Some megabytes, which reading in pieces does not take at once.
Bytes longLog()
{
    std::mt19937 random(3);
    const Bytes big = blockOfSize(0xffff);
    Bytes log;
    while (log.size() < 3000000) {
        log = log + (random() % 20 == 0 ? big : timedBlock(4027, 5000, 7, random() % 2000));
        if (random() % 10 == 0)
            log = log + falseHeader(0xffff);
    }
    return log;
}

TEST(Index, IsTheSameFromFilesSourcesAndThreads)
{
    const TemporaryFolder folder;
    const Bytes log = longLog();
    const std::string path = folder.write("log", log);
    const FileAccess mapped(path);
    const FileAccess unmapped(path, FileAccess::Mapping::Never);
    MemorySource source(log.data(), log.size());
    const Index expected = Index::build(mapped);
    EXPECT_EQ(expected.getCounts().blocks, Pass(log).blocks.size());
    for (const Index& index : {Index::build(unmapped), Index::build(source),
                               Index::build(mapped, {4}), Index::build(unmapped, {3, 7})}) {
        EXPECT_EQ(index.getLogSize(), log.size());
        EXPECT_TRUE(index.getPages().rows == expected.getPages().rows);
        EXPECT_TRUE(index.getPages().marks == expected.getPages().marks);
        EXPECT_EQ(index.getCount(4027), expected.getCount(4027));
        EXPECT_TRUE(readAlone(index, unmapped, {{4027}}) == readAlone(expected, mapped, {{4027}}));
    }
}

TEST(Index, OfSeveralFilesIsThatOfOneStream)
{
    const Bytes log = longLog();
    for (const size_t cutAt : {size_t{0}, size_t{1}, size_t{100000}, log.size() - 7, log.size()}) {
        const MemoryAccess first(log.data(), cutAt, "first");
        const MemoryAccess none(log.data(), 0);
        const MemoryAccess second(log.data() + cutAt, log.size() - cutAt, "second");
        const JoinedAccess joined({&first, &none, &second});
        const Index index = Index::build(joined, {1, 5});
        const Index whole = Index::build(MemoryAccess(log.data(), log.size()));
        EXPECT_TRUE(index.getPages().rows == whole.getPages().rows);
        EXPECT_TRUE(index.getPages().marks == whole.getPages().marks);
        IndexedBlocks blocks(index, joined);
        Block block = {};
        for (int i = 0; i < 300; ++i)
            ASSERT_TRUE(blocks.next(block));
        const JoinedAccess::Place place = joined.placeOf(block.offset);
        EXPECT_EQ(place.file, block.offset < cutAt ? "first" : "second");
        EXPECT_EQ(place.offset, block.offset < cutAt ? block.offset : block.offset - cutAt);
        EXPECT_TRUE(std::equal(block.data, block.data + block.size,
                               log.begin() + static_cast<std::ptrdiff_t>(block.offset)));
    }
}

TEST(Index, OfAnotherLogIsNoticedWhenBlocksAreRead)
{
    const Bytes log = blockOfSize(30) + blockOfSize(40);
    const MemoryAccess access(log.data(), log.size());
    const Index index = Index::build(access);
    for (const Bytes& other : {Bytes(70, 'x'), cut(log, 50), falseHeader(0xffff) + cut(log, 62)}) {
        const MemoryAccess wrong(other.data(), other.size(), "other");
        IndexedBlocks blocks(index, wrong);
        Block block;
        EXPECT_THROW(while (blocks.next(block)){}, SourceError);
    }
}

} // namespace
