#include "RecordingFramer.h"
#include "ReferenceFramer.h"
#include "StreamBuilder.h"

#include <gtest/gtest.h>

namespace
{

// Feeds the stream in pieces of random size, small ones and large ones.
void appendRandomly(RecordingFramer& framer, const Bytes& stream, std::mt19937& random)
{
    const size_t limit = std::vector<size_t>{1, 7, 300, 1 << 20}[random() % 4];
    for (size_t at = 0; at < stream.size();) {
        const size_t size = std::min(stream.size() - at, 1 + random() % limit);
        framer.append(stream.data() + at, size);
        at += size;
    }
}

TEST(DamagedStreams, EqualTheReference)
{
    for (unsigned seed = 0; seed < 6000; ++seed) {
        std::mt19937 random(seed);
        const Bytes stream = randomStream(random);
        RecordingFramer framer;
        appendRandomly(framer, stream, random);
        ASSERT_EQ(framer.framing(), referenceFraming(stream, false)) << "seed " << seed;
        framer.flush();
        ASSERT_EQ(framer.framing(), referenceFraming(stream, true)) << "seed " << seed;
    }
}

// Claims reach far beyond the table of prefix checksums and end at every residue.
TEST(DamagedStreams, LongClaimsOverlapEqualTheReference)
{
    std::mt19937 random(1);
    Bytes stream;
    while (stream.size() < 300000) {
        stream = stream + falseHeader(static_cast<uint16_t>(0xffff - random() % 9000)) +
                 Bytes(random() % 3000, 'x') + blockOfSize(8 + random() % 900);
    }
    RecordingFramer framer;
    appendRandomly(framer, stream, random);
    framer.flush();
    EXPECT_EQ(framer.framing(), referenceFraming(stream, true));
    EXPECT_GT(framer.framing().checksumErrors.size(), 100U);
    EXPECT_GT(framer.framing().blocks.size(), 100U);
}

} // namespace
