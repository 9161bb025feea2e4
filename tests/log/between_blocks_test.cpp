// What is between the blocks of an indexed log is reported as by one pass.

#include "TimedBlocks.h"
#include "tqx/log/index/BetweenBlocks.h"
#include "tqx/log/source/MemorySource.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

using namespace tqx;

/// Writes down all that it hears.
class Journal : public StreamListener
{
public:
    std::vector<std::string> lines;

private:
    void onGap(const StreamGap& gap) override
    {
        lines.push_back(gap.file + " " + std::to_string(gap.offset) + ": " + gap.describe());
    }
    void onNeighbour(const std::string& file, const Neighbour& neighbour) override
    {
        lines.push_back(file + " " + std::to_string(neighbour.offset) + ": " +
                        std::string(neighbour.data, neighbour.data + neighbour.size));
    }
    void onUndecodable(const std::string&, const Block&, int32_t) override {}
};

std::string describe(const StreamCounts& counts)
{
    std::string text;
    for (const uint64_t count : {counts.bytes, counts.blocks, counts.droppedBytes, counts.crcErrors,
                                 counts.invalidLengths})
        text += std::to_string(count) + ' ';
    for (const NeighbourCount& count : counts.neighbours)
        text += std::to_string(count.count) + '/' + std::to_string(count.bytes) + ' ';
    return text;
}

TEST(BetweenBlocks, IsReportedAsByOnePass)
{
    uint64_t neighbours = 0;
    uint64_t errors = 0;
    for (unsigned seed = 0; seed < 500; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        Bytes log;
        for (unsigned part = 0; part < 4; ++part) {
            const Bytes sentence = text("$GPGGA,1*61\r\n");
            const Bytes reply = text("$R: an answer $@ that is no block\r\nCOM1>");
            log = log + hostileLog(random);
            if (random() % 2 == 0)
                log = log + (random() % 2 == 0 ? sentence : reply);
        }
        MemorySource source(log.data(), log.size());
        Journal expected;
        BlockStream stream(source, &expected);
        for (Block block = {}; stream.next(block);) {
        }
        const MemoryAccess access(log.data(), log.size());
        const Index index = Index::build(access, {1, 3}, 64);
        Journal found;
        const StreamCounts counts = reportBetweenBlocks(index, access, &found);
        ASSERT_EQ(found.lines, expected.lines);
        ASSERT_EQ(describe(counts), describe(stream.getCounts()));
        neighbours += counts.of(NeighbourKind::Ascii).count + counts.of(NeighbourKind::Nmea).count;
        errors += index.getCounts().crcErrors - counts.crcErrors;
    }
    EXPECT_GT(neighbours, 500U);
    EXPECT_GT(errors, 0U);
}

} // namespace
