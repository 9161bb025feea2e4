#include "MixedBytes.h"
#include "tqx/log/stream/BlockStream.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace
{

using namespace tqx;

/// Bytes in memory, read in pieces.
class PieceSource : public ByteSource
{
public:
    PieceSource(Bytes content, size_t size) : m_bytes(std::move(content)), m_piece(size) {}

    size_t read(uint8_t* to, size_t capacity) override
    {
        const size_t size = std::min({m_bytes.size() - m_at, capacity, m_piece});
        std::copy_n(m_bytes.begin() + static_cast<std::ptrdiff_t>(m_at), size, to);
        m_at += size;
        return size;
    }
    Place placeOf(uint64_t offset) const override { return {m_name, offset}; }

private:
    std::string m_name = "memory";
    Bytes m_bytes;
    size_t m_piece;
    size_t m_at = 0;
};

/// Everything that a stream reports, in order, as text.
class Journal : public StreamListener
{
public:
    void onGap(const StreamGap& gap) override
    {
        text += std::to_string(gap.offset) + ": " + gap.describe() + "\n";
    }
    void onNeighbour(const std::string& file, const Neighbour& neighbour) override
    {
        text += std::to_string(neighbour.offset) + ": " + file + " " +
                "NRA"[static_cast<size_t>(neighbour.kind)] + std::to_string(neighbour.size) + "\n";
    }
    void onUndecodable(const std::string&, const Block&, int32_t) override { text += "?"; }

    std::string text;
};

struct Read {
    std::string journal;
    StreamCounts counts;
};

Read readAll(const Bytes& stream, size_t piece)
{
    PieceSource source(stream, piece);
    Journal journal;
    BlockStream blocks(source, &journal);
    Block block = {};
    while (blocks.next(block))
        journal.text += std::to_string(block.offset) + ": block\n";
    return {journal.text, blocks.getCounts()};
}

struct Row {
    const char* name;
    Bytes stream;
    std::string journal;
    uint64_t crcErrors;
    uint64_t invalidLengths;
    bool isDamaged;
};

const Bytes usualBlock = blockOfSize(20);
const Bytes gga = sentence("GPGGA,1");

const Row rows[] = {
    {"BetweenBlocks", usualBlock + gga + usualBlock + text("reply\r\n") + frame({1, 2}),
     "0: block\n20: memory N13\n33: block\n53: memory A7\n60: memory R8\n", 0, 0, false},
    {"DamageBeside", text("\x01") + gga + text("\x02\x03") + usualBlock,
     "0: 1 byte belongs to no block\n1: memory N13\n14: 2 bytes belong to no block\n16: block\n", 0,
     0, true},
    {"NoErrorsWithinAFrame", frame(falseHeader(3) + flipped(usualBlock, 9)) + usualBlock,
     "0: memory R34\n34: block\n", 0, 0, false},
    {"ErrorsBesideAFrame",
     falseHeader(3) + frame(falseHeader(2)) + flipped(usualBlock, 9) + usualBlock,
     "0: 8 bytes belong to no block, 1 invalid length\n8: memory R14\n"
     "22: 20 bytes belong to no block, 1 bad checksum\n42: block\n",
     1, 1, true},
    {"FrameThatClaimsAllTheRest", frame(falseHeader(0xffff)) + gga,
     "0: memory R14\n14: memory N13\n", 0, 0, false},
    {"BlockInAFrameWins", frame(usualBlock),
     "0: 3 bytes belong to no block\n3: block\n23: 3 bytes belong to no block\n", 0, 0, true},
    {"CutSentence", usualBlock + cut(gga, 9), "0: block\n20: 9 bytes belong to no block\n", 0, 0,
     true},
    {"CutBlockAfterSentence", gga + cut(usualBlock, 15),
     "0: memory N13\n13: 15 bytes belong to no block, the input ends inside a block\n", 0, 0, true},
};

TEST(BlockStream, ReportsNeighboursApartFromDamage)
{
    for (const Row& row : rows) {
        for (const size_t piece : {size_t{1}, size_t{11}, row.stream.size()}) {
            const Read read = readAll(row.stream, piece);
            EXPECT_EQ(read.journal, row.journal) << row.name << " in pieces of " << piece;
            EXPECT_EQ(read.counts.crcErrors, row.crcErrors) << row.name;
            EXPECT_EQ(read.counts.invalidLengths, row.invalidLengths) << row.name;
            EXPECT_EQ(read.counts.isDamaged(), row.isDamaged) << row.name;
        }
    }
}

TEST(BlockStream, AccountsForEveryByteOfMixedStreams)
{
    for (unsigned seed = 0; seed < 1000; ++seed) {
        std::mt19937 random(seed);
        const Bytes stream = randomStream(random) + randomRun(random) + randomStream(random);
        const Read whole = readAll(stream, stream.size());
        const StreamCounts& counts = whole.counts;
        uint64_t accounted = counts.droppedBytes;
        for (const NeighbourCount& found : counts.neighbours)
            accounted += found.bytes;
        PieceSource source(stream, 100);
        BlockStream blocks(source);
        Block block = {};
        while (blocks.next(block))
            accounted += block.size;
        ASSERT_EQ(accounted, stream.size()) << "seed " << seed;
        ASSERT_EQ(counts.bytes, stream.size()) << "seed " << seed;
        ASSERT_EQ(readAll(stream, 1 + random() % 50).journal, whole.journal) << "seed " << seed;
    }
}

} // namespace
