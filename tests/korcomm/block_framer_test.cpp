#include "RecordingFramer.h"
#include "ReferenceFramer.h"
#include "StreamBuilder.h"

#include <gtest/gtest.h>

#include <ctime>
#include <string>
#include <vector>

namespace
{

struct Row {
    std::string name;
    Bytes stream;
    Framing waiting; ///< before the end of input is reported
    Framing ended;   ///< after it
};

const Bytes small = blockOfSize(8);
const Bytes large = blockOfSize(100);

// Rows whose second outcome is empty do not change by the end of input.
const Row rows[] = {
    {"OddSizes", small + blockOfSize(9) + large, {{{0, 8}, {8, 9}, {17, 100}}, {}, {}, {}, 0}, {}},
    {"LongestBlock", blockOfSize(0xffff), {{{0, 0xffff}}, {}, {}, {}, 0}, {}},
    {"JunkAround",
     text("$junk@$") + small + text("@junk"),
     {{{7, 8}}, {{0, 7}, {15, 5}}, {}, {}, 0},
     {}},
    {"EndsInHalfASync",
     small + text("a$"),
     {{{0, 8}}, {{8, 1}}, {}, {}, 1},
     {{{0, 8}}, {{8, 2}}, {}, {}, 0}},
    {"EndsBeforeTheLastByte", cut(large, 99), {{}, {}, {}, {}, 99}, {{}, {{0, 99}}, {}, {}, 0}},
    {"BadPayload", flipped(large, 99) + small, {{{100, 8}}, {{0, 100}}, {0}, {}, 0}, {}},
    {"LengthTooSmall", falseHeader(7) + small, {{{8, 8}}, {{0, 8}}, {}, {0}, 0}, {}},
    {"BlockRightBehindAFalseSync",
     text("$@") + small,
     {{}, {}, {}, {}, 10},
     {{{2, 8}}, {{0, 2}}, {}, {}, 0}},
    {"BlockInPayload", block(small + large), {{{0, 116}}, {}, {}, {}, 0}, {}},
    {"BlocksInDamagedPayload",
     flipped(block(small + large), 3),
     {{{8, 8}, {16, 100}}, {{0, 8}}, {0}, {}, 0},
     {}},
    {"FalseHeaderWaitsBeforeBlocks",
     falseHeader(200) + small + large,
     {{}, {}, {}, {}, 116},
     {{{8, 8}, {16, 100}}, {{0, 8}}, {}, {}, 0}},
    {"FalseHeadersEndInsideABlock",
     falseHeader(40) + falseHeader(20) + large + large,
     {{{16, 100}, {116, 100}}, {{0, 16}}, {0, 8}, {}, 0},
     {}},
};

TEST(BlockFramer, GivesBlocksAndAccountsForTheRest)
{
    for (const Row& row : rows) {
        EXPECT_EQ(referenceFraming(row.stream, false), row.waiting) << row.name << " by reference";
        const Framing& ended = row.ended.bytesInAll() == 0 ? row.waiting : row.ended;
        EXPECT_EQ(referenceFraming(row.stream, true), ended) << row.name << " by reference";
        for (const size_t piece : {size_t{1}, size_t{13}, row.stream.size()}) {
            RecordingFramer framer;
            for (size_t at = 0; at < row.stream.size(); at += piece) {
                framer.append(&row.stream[at], std::min(piece, row.stream.size() - at));
            }
            EXPECT_EQ(framer.framing(), row.waiting) << row.name << " in pieces of " << piece;
            framer.flush();
            EXPECT_EQ(framer.framing(), ended) << row.name << " in pieces of " << piece;
        }
    }
}

TEST(BlockFramer, EndOfInputInEveryPlace)
{
    const Bytes stream = text("a$") + small + falseHeader(40) + large + flipped(small, 5) +
                         block(text("$@")) + falseHeader(3);
    for (size_t size = 0; size <= stream.size(); ++size) {
        const Bytes part = cut(stream, size);
        RecordingFramer framer;
        framer.append(part);
        framer.flush();
        EXPECT_EQ(framer.framing(), referenceFraming(part, true)) << size << " bytes";
        EXPECT_EQ(framer.framing().left, 0U);
    }
}

TEST(BlockFramer, GoesOnBehindTheEndOfInput)
{
    RecordingFramer framer;
    framer.append(cut(large, 60));
    framer.flush();
    framer.append(cut(large, 40));
    EXPECT_EQ(framer.framing(), (Framing{{}, {{0, 60}}, {}, {}, 40})) << "waits for more again";
    framer.append({large.begin() + 40, large.end()});
    EXPECT_EQ(framer.framing(), (Framing{{{60, 100}}, {{0, 60}}, {}, {}, 0}));
}

TEST(BlockFramer, BlockStaysUntilTaken)
{
    tqx::BlockFramer framer;
    EXPECT_EQ(framer.block().data, nullptr);
    framer.takeBlock();
    const Bytes stream = small + large;
    framer.append(stream.data(), stream.size());
    framer.append(stream.data(), stream.size());
    EXPECT_EQ(framer.bytesLeft(), 216U);
    for (const uint64_t offset : {0U, 8U, 108U, 116U}) {
        ASSERT_TRUE(framer.hasBlock());
        EXPECT_EQ(framer.block().offset, offset);
        framer.takeBlock();
    }
    EXPECT_FALSE(framer.hasBlock());
    EXPECT_EQ(framer.bytesLeft(), 0U);
}

/// Appends the rest of the stream from within the last report of an invalid length.
class AppendingListener : public tqx::BlockFramer::Listener
{
public:
    AppendingListener(size_t errors, const Bytes& bytes) : m_errorsLeft(errors), m_rest(bytes) {}

    void onChecksumFailed(uint64_t) override {}
    void onInvalidLength(uint64_t) override
    {
        if (--m_errorsLeft == 0) {
            framer.append(m_rest.data(), m_rest.size());
        }
    }
    void onBytesDropped(uint64_t offset, uint64_t count) override
    {
        EXPECT_EQ(dropped.size(), offset + count);
    }
    void onDroppedPiece(uint64_t offset, const uint8_t* bytes, size_t size) override
    {
        EXPECT_EQ(dropped.size(), offset);
        dropped.insert(dropped.end(), bytes, bytes + size);
    }

    tqx::BlockFramer framer{this};
    Bytes dropped;

private:
    size_t m_errorsLeft;
    const Bytes& m_rest;
};

// The buffer makes room for the rest while what was dropped before it waits for its report.
TEST(BlockFramer, HandsOverDroppedBytesOfAListenerThatAppends)
{
    constexpr size_t errors = 200;
    Bytes errorBytes;
    for (size_t i = 0; i < errors; ++i) {
        errorBytes = errorBytes + falseHeader(static_cast<uint16_t>(i % 8));
    }
    const Bytes rest(40000, 'x');
    AppendingListener listener(errors, rest);
    listener.framer.append(errorBytes.data(), errorBytes.size());
    EXPECT_EQ(listener.dropped, errorBytes + rest);
}

double secondsToFrame(const Bytes& stream)
{
    const std::clock_t start = std::clock();
    tqx::BlockFramer framer;
    for (size_t at = 0; at < stream.size(); at += 65536) {
        framer.append(&stream[at], std::min<size_t>(65536, stream.size() - at));
        while (framer.hasBlock()) {
            framer.takeBlock();
        }
    }
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

// Summing each claim anew would cost thousands of times the sound stream.
TEST(BlockFramer, OverlappingClaimsCostLittle)
{
    Bytes sound;
    Bytes hostile;
    while (sound.size() < 16000000) {
        const Bytes longest = blockOfSize(0xffff);
        sound.insert(sound.end(), longest.begin(), longest.end());
    }
    while (hostile.size() < sound.size()) {
        const Bytes claim = falseHeader(0xffff);
        hostile.insert(hostile.end(), claim.begin(), claim.end());
    }
    EXPECT_LT(secondsToFrame(hostile), 500 * secondsToFrame(sound));
}

} // namespace
