#include "RecordingFramer.h"
#include "ReferenceFramer.h"
#include "StreamBuilder.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

struct Row {
    std::string name;
    Bytes stream;
    Framing waiting; ///< before the end of input is told
    Framing ended;   ///< after it
};

const Bytes kSmall = blockOfSize(8);
const Bytes kLarge = blockOfSize(100);
const Bytes kLongest = blockOfSize(0xffff);

// Rows whose second outcome is empty do not change by the end of input.
const std::vector<Row> kRows = {
    {"Nothing", {}, {}, {}},
    {"OneBlock", kLarge, {{{0, 100}}, {}, {}, {}, 0}, {}},
    {"LeastBlock", kSmall, {{{0, 8}}, {}, {}, {}, 0}, {}},
    {"LongestBlock", kLongest, {{{0, 0xffff}}, {}, {}, {}, 0}, {}},
    {"OddSizes", blockOfSize(9) + blockOfSize(11), {{{0, 9}, {9, 11}}, {}, {}, {}, 0}, {}},
    {"JunkBefore", text("junk") + kSmall, {{{4, 8}}, {{0, 4}}, {}, {}, 0}, {}},
    {"JunkBetween",
     kSmall + text("$junk@$") + kLarge,
     {{{0, 8}, {15, 100}}, {{8, 7}}, {}, {}, 0},
     {}},
    {"JunkBehind", kSmall + text("@junk"), {{{0, 8}}, {{8, 5}}, {}, {}, 0}, {}},
    {"FirstSyncTwice", text("$") + kSmall, {{{1, 8}}, {{0, 1}}, {}, {}, 0}, {}},
    {"EndsInHalfASync",
     kSmall + text("a$"),
     {{{0, 8}}, {{8, 1}}, {}, {}, 1},
     {{{0, 8}}, {{8, 2}}, {}, {}, 0}},
    {"EndsInAHeader",
     kSmall + cut(kLarge, 7),
     {{{0, 8}}, {}, {}, {}, 7},
     {{{0, 8}}, {{8, 7}}, {}, {}, 0}},
    {"EndsBeforeTheLastByte", cut(kLarge, 99), {{}, {}, {}, {}, 99}, {{}, {{0, 99}}, {}, {}, 0}},
    {"BadChecksum", flipped(kLarge, 2), {{}, {{0, 100}}, {0}, {}, 0}, {}},
    {"BadPayload", flipped(kLarge, 99) + kSmall, {{{100, 8}}, {{0, 100}}, {0}, {}, 0}, {}},
    {"LengthTooSmall", falseHeader(7) + kSmall, {{{8, 8}}, {{0, 8}}, {}, {0}, 0}, {}},
    {"LengthZero", falseHeader(0), {{}, {{0, 8}}, {}, {0}, 0}, {}},
    {"BlockRightBehindAFalseSync",
     text("$@") + kSmall,
     {{}, {}, {}, {}, 10},
     {{{2, 8}}, {{0, 2}}, {}, {}, 0}},
    {"SyncInPayload",
     block(text("$@") + falseHeader(5)) + kSmall,
     {{{0, 18}, {18, 8}}, {}, {}, {}, 0},
     {}},
    {"BlockInPayload", block(kSmall + kLarge), {{{0, 116}}, {}, {}, {}, 0}, {}},
    {"BlocksInDamagedPayload",
     flipped(block(kSmall + kLarge), 3),
     {{{8, 8}, {16, 100}}, {{0, 8}}, {0}, {}, 0},
     {}},
    {"FalseHeaderHidesBlocks",
     falseHeader(30) + kSmall + kSmall + blockOfSize(10),
     {{{8, 8}, {16, 8}, {24, 10}}, {{0, 8}}, {0}, {}, 0},
     {}},
    {"FalseHeaderWaitsBeforeBlocks",
     falseHeader(200) + kSmall + kLarge,
     {{}, {}, {}, {}, 116},
     {{{8, 8}, {16, 100}}, {{0, 8}}, {}, {}, 0}},
    {"FalseHeadersOverlap",
     falseHeader(40) + falseHeader(50) + falseHeader(60) + kLarge,
     {{{24, 100}}, {{0, 24}}, {0, 8, 16}, {}, 0},
     {}},
    {"FalseHeaderEndsInsideABlock",
     falseHeader(20) + kLarge + kLarge,
     {{{8, 100}, {108, 100}}, {{0, 8}}, {0}, {}, 0},
     {}},
    {"CutBlockBeforeBlocks",
     cut(kLarge, 50) + kSmall + kLarge,
     {{{50, 8}, {58, 100}}, {{0, 50}}, {0}, {}, 0},
     {}},
};

std::ostream& operator<<(std::ostream& out, const Row& row)
{
    return out << row.name;
}

enum class Pieces { Whole, Bytes, Halves, Random };

class FramerMatrix : public testing::TestWithParam<std::tuple<Row, Pieces>>
{
};

void appendInPieces(RecordingFramer& framer, const Bytes& stream, Pieces pieces)
{
    std::mt19937 random(7);
    for (size_t at = 0; at < stream.size();) {
        size_t size = stream.size();
        if (pieces == Pieces::Bytes) {
            size = 1;
        } else if (pieces == Pieces::Halves) {
            size = stream.size() / 2 + 1;
        } else if (pieces == Pieces::Random) {
            size = random() % 20;
        }
        size = std::min(size, stream.size() - at);
        framer.append(stream.data() + at, size);
        at += size;
    }
}

TEST_P(FramerMatrix, GivesBlocksAndAccountsForTheRest)
{
    const auto& [row, pieces] = GetParam();
    RecordingFramer framer;
    appendInPieces(framer, row.stream, pieces);
    EXPECT_EQ(framer.framing(), row.waiting);
    EXPECT_EQ(referenceFraming(row.stream, false), row.waiting) << "the reference is wrong";
    framer.flush();
    const Framing& ended = row.ended.bytesInAll() == 0 ? row.waiting : row.ended;
    EXPECT_EQ(framer.framing(), ended);
    EXPECT_EQ(referenceFraming(row.stream, true), ended) << "the reference is wrong";
}

std::string rowName(const testing::TestParamInfo<std::tuple<Row, Pieces>>& info)
{
    constexpr const char* kPieces[] = {"Whole", "Bytes", "Halves", "Random"};
    return std::get<Row>(info.param).name + kPieces[static_cast<int>(std::get<Pieces>(info.param))];
}

INSTANTIATE_TEST_SUITE_P(All, FramerMatrix,
                         testing::Combine(testing::ValuesIn(kRows),
                                          testing::Values(Pieces::Whole, Pieces::Bytes,
                                                          Pieces::Halves, Pieces::Random)),
                         rowName);

TEST(BlockFramer, EndOfInputInEveryPlace)
{
    const Bytes stream = text("a$") + kSmall + falseHeader(40) + kLarge + flipped(kSmall, 5) +
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
    framer.append(cut(kLarge, 60));
    framer.flush();
    framer.append(cut(kLarge, 40));
    EXPECT_EQ(framer.framing(), (Framing{{}, {{0, 60}}, {}, {}, 40})) << "waits for more again";
    framer.append({kLarge.begin() + 40, kLarge.end()});
    EXPECT_EQ(framer.framing(), (Framing{{{60, 100}}, {{0, 60}}, {}, {}, 0}));
}

TEST(BlockFramer, BlockStaysUntilTaken)
{
    BlockFramer framer;
    EXPECT_EQ(framer.block().data, nullptr);
    framer.takeBlock();
    const Bytes stream = kSmall + kLarge;
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

} // namespace
