#include "RecordingFramer.h"
#include "StreamBuilder.h"

#include <gtest/gtest.h>

#include <ctime>

// A candidate that waits for bytes on a live stream, and is doubted.

namespace
{

const Bytes small = blockOfSize(8);
const Bytes large = blockOfSize(100);

struct Row {
    const char* name;
    Bytes stream;
    bool isPassed;
    Framing framing; ///< once nothing is passed any more
};

const Row rows[] = {
    {"NothingWaits", small, false, {{{0, 8}}, {}, {}, {}, 0}},
    {"NoWholeHeader", text("$@$@abc"), false, {{}, {}, {}, {}, 7}},
    {"NothingIsHeldBack", falseHeader(200) + cut(large, 99), false, {{}, {}, {}, {}, 107}},
    {"DamagedBlock", falseHeader(200) + flipped(large, 50), false, {{}, {}, {}, {}, 108}},
    {"BlocksAreHeldBack",
     falseHeader(200) + small + large,
     true,
     {{{8, 8}, {16, 100}}, {{0, 8}}, {}, {}, 0}},
    {"LongestClaim",
     text("junk") + falseHeader(0xffff) + text("$@junk") + large + text("$@"),
     true,
     {{{18, 100}}, {{0, 18}}, {}, {}, 2}},
    {"SeveralWaitBeforeABlock",
     falseHeader(5000) + falseHeader(200) + falseHeader(3) + falseHeader(0xffff) + small,
     true,
     {{{32, 8}}, {{0, 32}}, {}, {16}, 0}},
    {"AnotherWaitsAfterTheBlock",
     falseHeader(200) + small + falseHeader(300) + text("junk"),
     true,
     {{{8, 8}}, {{0, 8}}, {}, {}, 12}},
    {"BlockOnItsWayIsLostForOneInItsBody",
     cut(block(small + large), 60),
     true,
     {{{8, 8}}, {{0, 8}}, {}, {}, 44}},
};

TEST(WaitingCandidate, IsPassedWhereItHoldsBackABlock)
{
    for (const Row& row : rows) {
        RecordingFramer framer;
        framer.append(row.stream);
        bool isPassed = false;
        while (framer.passWaiting()) {
            isPassed = true;
        }
        EXPECT_EQ(isPassed, row.isPassed) << row.name;
        EXPECT_EQ(framer.framing(), row.framing) << row.name;
    }
}

TEST(WaitingCandidate, SaysWhatItClaims)
{
    RecordingFramer framer;
    framer.append(large + falseHeader(300) + text("junk"));
    EXPECT_EQ(framer.waiting().offset, 100U);
    EXPECT_EQ(framer.waiting().size, 12U);
    EXPECT_EQ(framer.waiting().length, 300U);
    EXPECT_EQ(framer.waiting().data[4], 0xa7);
    framer.flush();
    EXPECT_EQ(framer.waiting().data, nullptr);
}

// Called from time to time while the pieces arrive, so that the search continues where it was.
TEST(WaitingCandidate, IsPassedExactlyWhereItHoldsBackABlock)
{
    unsigned passed = 0;
    for (unsigned seed = 0; seed < 300; ++seed) {
        std::mt19937 random(seed);
        const bool isLong = seed % 10 == 0;
        const Bytes stream = falseHeader(isLong ? 0xffff : static_cast<uint16_t>(random() % 3000)) +
                             randomStream(random) + falseHeader(1000) +
                             (isLong ? flipped(blockOfSize(30000), 20000) : small) +
                             randomStream(random);
        RecordingFramer framer;
        const size_t limit = isLong ? 6000 : std::vector<size_t>{1, 7, 300}[seed % 3];
        for (size_t at = 0; at < stream.size();) {
            const size_t size = std::min(stream.size() - at, 1 + random() % limit);
            framer.append(stream.data() + at, size);
            at += size;
            for (bool isPassed = random() % 4 == 0; isPassed;) {
                const bool isExpected = framer.holdsBack();
                isPassed = framer.passWaiting();
                ASSERT_EQ(isPassed, isExpected) << "seed " << seed << ", " << at << " bytes";
                passed += isPassed ? 1 : 0;
            }
        }
    }
    EXPECT_GT(passed, 300U);
}

double secondsToAsk(const Bytes& stream)
{
    constexpr size_t pieceSize = 64;
    const std::clock_t start = std::clock();
    tqx::BlockFramer framer;
    for (size_t at = 0; at < stream.size(); at += pieceSize) {
        framer.append(&stream[at], std::min(pieceSize, stream.size() - at));
        while (framer.passWaiting()) {
        }
        while (framer.hasBlock()) {
            framer.takeBlock();
        }
    }
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

// Looking at every claim again with each piece would cost hundreds of times as much.
TEST(WaitingCandidate, AskingOftenCostsLittle)
{
    Bytes intact;
    Bytes hostile;
    while (intact.size() < 1000000) {
        intact = intact + blockOfSize(1000);
    }
    while (hostile.size() < intact.size()) {
        const Bytes claim = falseHeader(static_cast<uint16_t>(40000 + hostile.size() % 7919));
        hostile.insert(hostile.end(), claim.begin(), claim.end());
    }
    EXPECT_LT(secondsToAsk(hostile), 500 * secondsToAsk(intact));
}

} // namespace
