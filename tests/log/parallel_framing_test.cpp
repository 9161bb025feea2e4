// A log framed in stretches is framed as in one pass.

#include "ReferenceFramer.h"
#include "TimedBlocks.h"
#include "tqx/framing/BlockFramer.h"
#include "tqx/log/DataError.h"
#include "tqx/log/index/LogFramer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>

namespace tqx
{

std::ostream& operator<<(std::ostream& out, const PageRow& row)
{
    return out << row.entry << ' ' << row.blocks << ' ' << row.firstTow << ' ' << row.lastTow << ' '
               << row.towBefore << ' ' << int{row.weekBefore} << ' ' << row.startsWeek;
}

} // namespace tqx

namespace
{

using tqx::FramedPages;
using tqx::frameLog;
using tqx::MemoryAccess;
using tqx::PageOffsets;

#ifdef TQX_FEW_STREAMS
constexpr unsigned streams = 500;
#else
constexpr unsigned streams = 10000;
#endif

// An optimised build tries every number of stretches on every stream, another one some on each.
#if defined(__OPTIMIZE__) && !defined(TQX_FEW_STREAMS)
constexpr unsigned step = 1;
#else
constexpr unsigned step = 12;
#endif

/// Reads a log in memory as a file is read, in pieces.
class UnmappedAccess : public MemoryAccess
{
public:
    using MemoryAccess::MemoryAccess;
    const uint8_t* getBytes() const override { return nullptr; }
};

std::vector<uint64_t> offsetsIn(const FramedPages& pages, const PageOffsets& offsets)
{
    std::vector<uint64_t> all;
    PageOffsets::Cursor cursor(offsets);
    for (uint32_t page = 0; page < pages.getEndPage(); ++page) {
        for (const uint16_t offset : cursor.at(page))
            all.push_back(pages.startOf(page) + offset);
    }
    return all;
}

Framing framingOf(const FramedPages& pages, const Bytes& log)
{
    Framing framing;
    for (const FramedPages::Type& type : pages.types) {
        for (const uint64_t offset : offsetsIn(pages, type.offsets)) {
            EXPECT_EQ((log[offset + 4] | log[offset + 5] << 8) & 0x1fff, type.number);
            framing.blocks.push_back({offset, uint64_t(log[offset + 6] | log[offset + 7] << 8)});
        }
    }
    std::sort(framing.blocks.begin(), framing.blocks.end(),
              [](const auto& left, const auto& right) { return left.offset < right.offset; });
    framing.checksumErrors = offsetsIn(pages, pages.marks[FramedPages::ChecksumError]);
    framing.invalidLengths = offsetsIn(pages, pages.marks[FramedPages::InvalidLength]);
    const auto starts = offsetsIn(pages, pages.marks[FramedPages::GapStart]);
    const auto lasts = offsetsIn(pages, pages.marks[FramedPages::GapLast]);
    EXPECT_EQ(starts.size(), lasts.size());
    for (size_t i = 0; i < starts.size(); ++i)
        framing.addDropped(starts[i], lasts[i] + 1 - starts[i]);
    return framing;
}

/// What one pass of the framer of streams makes of a log.
class OnePass : private tqx::BlockFramer::Listener
{
public:
    explicit OnePass(const Bytes& log)
    {
        tqx::BlockFramer framer(this);
        framer.append(log.data(), log.size());
        takeBlocks(framer);
        framer.flush();
        takeBlocks(framer);
    }

    const Framing& getFraming() const { return m_framing; }

private:
    void takeBlocks(tqx::BlockFramer& framer)
    {
        for (; framer.hasBlock(); framer.takeBlock())
            m_framing.blocks.push_back({framer.block().offset, framer.block().size});
    }

    void onChecksumFailed(uint64_t offset) override { m_framing.checksumErrors.push_back(offset); }
    void onInvalidLength(uint64_t offset) override { m_framing.invalidLengths.push_back(offset); }
    void onBytesDropped(uint64_t offset, uint64_t count) override
    {
        m_framing.addDropped(offset, count);
    }

    Framing m_framing;
};

FramedPages sorted(FramedPages pages)
{
    std::sort(pages.types.begin(), pages.types.end(),
              [](const auto& left, const auto& right) { return left.number < right.number; });
    return pages;
}

void expectEqual(const FramedPages& left, const FramedPages& right)
{
    ASSERT_EQ(left.exit, right.exit);
    ASSERT_EQ(left.rows, right.rows);
    ASSERT_TRUE(left.marks == right.marks);
    ASSERT_EQ(left.types.size(), right.types.size());
    for (size_t i = 0; i < left.types.size(); ++i) {
        ASSERT_EQ(left.types[i].number, right.types[i].number);
        ASSERT_TRUE(left.types[i].offsets == right.types[i].offsets) << left.types[i].number;
    }
}

TEST(ParallelFraming, AnyNumberOfStretchesGivesWhatOnePassGives)
{
    for (unsigned seed = 0; seed < streams; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const Bytes log = hostileLog(random);
        const uint32_t pageSize = 16U << random() % 5;
        const MemoryAccess mapped(log.data(), log.size());
        const UnmappedAccess unmapped(log.data(), log.size());
        const auto pages = static_cast<unsigned>((log.size() + pageSize - 1) / pageSize);

        const FramedPages serial = sorted(frameLog(mapped, FramedPages(pageSize), {}));
        ASSERT_EQ(framingOf(serial, log), OnePass(log).getFraming());
        // More stretches than pages are as many as pages.
        for (unsigned stretches = 1 + seed % step; stretches <= std::min(64U, pages + 1);
             stretches += step) {
            SCOPED_TRACE(stretches);
            const bool isMapped = random() % 16 != 0;
            const tqx::RandomAccess& access =
                isMapped ? static_cast<const tqx::RandomAccess&>(mapped) : unmapped;
            expectEqual(sorted(frameLog(access, FramedPages(pageSize), {1, stretches})), serial);
            if (HasFatalFailure())
                return;
        }
    }
}

} // namespace
