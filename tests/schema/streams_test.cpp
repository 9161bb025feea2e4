// Streams and indexes know the types of a schema: their blocks move the week, and a live stream
// waits for the rest of them.

#include "Station.h"

#include "TimedBlocks.h"
#include "tqx/log/index/IndexedBlocks.h"
#include "tqx/log/source/MemorySource.h"
#include "tqx/log/stream/BlockStream.h"
#include "tqx/log/stream/HeaderCheck.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

using namespace tqx;
using namespace tqx::testing;
using Kor::MessageApi::TQX_MainHeader_s;
using Kor::MessageApi::TQX_millisPerWeek;

namespace
{

constexpr uint16_t endOfMeas = 5922;
constexpr uint16_t report = 7001;
constexpr uint16_t unknown = 8191;

/// A report that has all fields of its revision.
Bytes weatherAt(uint32_t tow, uint16_t week)
{
    return timedBlock(report, tow, week, 16);
}

/// Stretches of one type each, so that weeks begin with blocks of any of them.
Bytes logOfManyWeeks(std::mt19937& random)
{
    Bytes log;
    uint64_t time = 100 * uint64_t{TQX_millisPerWeek};
    for (unsigned stretch = 0; stretch < 9; ++stretch) {
        for (unsigned i = 0; i < 20; ++i) {
            time += random() % 60000000;
            const auto tow = static_cast<uint32_t>(time % TQX_millisPerWeek);
            const auto week = static_cast<uint16_t>(time / TQX_millisPerWeek);
            constexpr uint16_t built[] = {endOfMeas, 4007, unknown};
            log = log + (random() % 3 != stretch % 3 ? weatherAt(tow, week)
                                                     : timedBlock(built[random() % 3], tow, week));
        }
    }
    return log;
}

/// Continuous times of blocks by their offsets; 0 of what does not decode.
using Times = std::map<uint64_t, uint32_t>;

uint32_t timeOf(RecordDecoder& decoder, int32_t result)
{
    if (result <= 0)
        return 0;
    return static_cast<const TQX_MainHeader_s*>(decoder.getDecoded().record)->TOWc;
}

Times timesOfOnePass(const Bytes& log)
{
    MemorySource source(log.data(), log.size());
    BlockStream stream(source);
    RecordDecoder decoder(station());
    Times times;
    for (Block block; stream.next(block);)
        times[block.offset] = timeOf(decoder, decoder.decode(block));
    return times;
}

} // namespace

TEST(Streams, weeksBeginWithAddedBlocks)
{
    for (unsigned seed = 0; seed < 40; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const Bytes log = logOfManyWeeks(random);
        const Times expected = timesOfOnePass(log);
        RecordDecoder decoder(station());

        MemorySource source(log.data(), log.size());
        BlockStream stream(source);
        stream.setSchema(station());
        Times streamed;
        for (Block block; stream.next(block);)
            streamed[block.offset] = timeOf(decoder, decoder.decode(block, stream.getContext()));
        EXPECT_EQ(streamed, expected);

        const MemoryAccess content(log.data(), log.size());
        Index index = Index::build(content, {}, 16U << seed % 8);
        index.follow(station(), content);
        Times indexed;
        for (const uint16_t number : {endOfMeas, report, uint16_t{4007}, unknown}) {
            IndexedBlocks blocks(index, content, {{number}});
            for (Block block; blocks.next(block);)
                indexed[block.offset] = timeOf(decoder, decoder.decode(block, blocks.getContext()));
        }
        EXPECT_EQ(indexed, expected);
    }
}

namespace
{

/// Gives its bytes in two pieces and remembers when the second one was asked for.
class TwoPieces : public ByteSource
{
public:
    TwoPieces(const Bytes& bytes, size_t sizeOfFirst) : m_bytes(bytes), m_end(sizeOfFirst) {}

    bool hasGivenBoth() const { return m_end == m_bytes.size(); }

    size_t read(uint8_t* bytes, size_t) override
    {
        if (m_position == m_end)
            m_end = m_bytes.size();
        const size_t count = m_end - m_position;
        std::copy_n(m_bytes.data() + m_position, count, bytes);
        m_position = m_end;
        return count;
    }
    Place placeOf(uint64_t offset) const override { return {m_name, offset}; }

private:
    const Bytes& m_bytes;
    size_t m_end;
    size_t m_position = 0;
    std::string m_name = "pieces";
};

std::vector<uint16_t> numbersOf(const Bytes& bytes, size_t sizeOfFirst, const Schema& schema)
{
    TwoPieces source(bytes, sizeOfFirst);
    BlockStream stream(source);
    stream.setSchema(schema);
    stream.setLive(std::chrono::hours(1));
    std::vector<uint16_t> numbers;
    for (Block block; stream.next(block);)
        numbers.push_back(block.getNumber());
    return numbers;
}

} // namespace

// A picture with the bytes of a whole block in it, of which the end comes later.
TEST(Streams, liveOnesWaitForAddedBlocks)
{
    const Bytes inner = timedBlock(endOfMeas, 1000, 2400);
    std::string pixels;
    for (const uint8_t byte : inner)
        pixels += (pixels.empty() ? "" : ",") + std::to_string(byte);
    const Bytes image = encoded(station(), R"({"block":"StationImage","fields":{"Pixels":[)" +
                                               pixels + ",1,2,3,4]}}");
    const size_t first = image.size() - 4;
    EXPECT_EQ(numbersOf(image, first, station()), std::vector<uint16_t>{7003});
    EXPECT_EQ(numbersOf(image, first, Schema()), std::vector<uint16_t>{endOfMeas});
}

TEST(Streams, headersOfAddedBlocksAreCheckedByTheirLengths)
{
    const size_t size = weatherAt(1000, 2400).size();
    EXPECT_TRUE(isPlausibleHeader(report, size, station()));
    EXPECT_FALSE(isPlausibleHeader(report, size, {}));
    EXPECT_FALSE(isPlausibleHeader(report, size + 8, station()));
    EXPECT_FALSE(isPlausibleHeader(report, 16, station()));
    EXPECT_TRUE(isPlausibleHeader(7002, 40000, station()));
}

TEST(Schema, namesItsCodesAmongAll)
{
    std::map<int32_t, std::string> codes;
    int32_t last = 0;
    station().forEachError([&](int32_t code, const char* name) {
        EXPECT_LT(code, last);
        last = code;
        EXPECT_STREQ(station().getErrorName(code), name);
        codes[code] = name;
    });
    EXPECT_EQ(codes[-1], "TQX_ERR_INVALID_CRC");
    EXPECT_EQ(codes[-100000], "TQX_ERR_WEATHERREPORT_SYNC1_EXT_BUFFER_OVERFLOW");
    EXPECT_STREQ(station().getErrorName(last - 1), "???");
    size_t built = 0;
    Schema().forEachError([&](int32_t, const char*) { ++built; });
    EXPECT_EQ(codes.size() - built, static_cast<size_t>(-99999 - last));
}
