#include "Station.h"

#include <gtest/gtest.h>

#include <random>

using namespace tqx;
using namespace tqx::testing;
using namespace Kor::MessageApi;

namespace
{

/// Of a cut block: each cut fails with a code that has a name in the schema.
void cutEverywhere(const std::vector<uint8_t>& bytes)
{
    RecordDecoder decoder(station());
    const auto all = static_cast<size_t>(decoder.decode(blockOf(bytes)) / 8);
    ASSERT_EQ(all, bytes.size());
    for (size_t size = 7; size < all; ++size) {
        // A copy of that size, so that sanitizers see what is read beyond.
        const std::vector<uint8_t> cut(bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(size));
        const int32_t code = decoder.decode(blockOf(cut));
        EXPECT_LT(code, 0) << size;
        EXPECT_STRNE(station().getErrorName(code), "???") << size;
    }
}

} // namespace

TEST(DamagedBlocks, failWithTheCodeOfAField)
{
    for (const std::string& line : stationLines)
        cutEverywhere(encoded(station(), line));
    const std::vector<uint8_t> weather = encoded(station(), stationLines[0]);
    const std::pair<size_t, const char*> rows[] = {
        {9, "TQX_ERR_WEATHERREPORT_NORTH_EXT_BUFFER_OVERFLOW"},
        {29, "TQX_ERR_WEATHERREPORT_NORTH_EXT_BUFFER_OVERFLOW"},
    };
    for (const auto& [size, name] : rows) {
        const std::vector<uint8_t> cut(weather.begin(),
                                       weather.begin() + static_cast<ptrdiff_t>(size));
        RecordDecoder decoder(station());
        EXPECT_STREQ(station().getErrorName(decoder.decode(blockOf(cut))), name) << size;
    }
}

TEST(DamagedBlocks, doNotAskForMoreMemoryThanTheirBytesCanFill)
{
    const Schema schema = schemaOf("- block: Crowd\n  number: 7060\n  timestamp: R\n  fields:\n"
                                   "    - {name: N, type: u32}\n"
                                   "    - {name: Subs, blocks: CrowdSub, count: N}\n"
                                   "- sub: CrowdSub\n  fields:\n    - {name: M, type: u16}\n"
                                   "    - {name: B, type: text, count: M, capacity: 16000}\n");
    std::vector<uint8_t> bytes =
        encoded(schema, R"({"block":"Crowd","fields":{"Subs":[{"B":"ab"}]}})");
    RecordDecoder decoder(schema);
    ASSERT_GT(decoder.decode(blockOf(bytes)), 0);
    bytes[14 + 3] = 0xf0; // four milliards of entries
    EXPECT_STREQ(schema.getErrorName(decoder.decode(blockOf(bytes))),
                 "TQX_ERR_CROWDSUB_B_SIZE_UNDERFLOW");
}

TEST(DamagedBlocks, areWrittenBackWhereTheyDecode)
{
    std::mt19937 random(1);
    size_t decoded = 0;
    for (int round = 0; round < 300; ++round) {
        std::vector<uint8_t> bytes =
            encoded(station(), stationLines[static_cast<size_t>(round) % stationLines.size()]);
        for (unsigned i = 0; i < 1 + random() % 3; ++i)
            bytes[8 + random() % (bytes.size() - 8)] = static_cast<uint8_t>(random());
        const std::string stored = storedLine(station(), bytes);
        if (stored.empty())
            continue;
        ++decoded;
        // With what fields cannot say beside them.
        const std::vector<uint8_t> again = encoded(station(), stored);
        EXPECT_EQ(std::vector<uint8_t>(again.begin() + 4, again.end()),
                  std::vector<uint8_t>(bytes.begin() + 4, bytes.end()))
            << stored;
    }
    EXPECT_GT(decoded, 100U);
}
