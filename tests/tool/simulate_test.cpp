#include "Tool.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>

using nlohmann::json;

namespace
{

std::string simulated(const QStringList& options)
{
    const ToolRun run = runTool(QStringList{"simulate"} + options);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.words, "");
    return run.output;
}

} // namespace

TEST(Simulate, SameSeedSameBytes)
{
    const QStringList options = {"--duration", "30", "--rate", "2", "--seed", "5"};
    const std::string log = simulated(options);
    EXPECT_TRUE(log == simulated(options));
    EXPECT_FALSE(log == simulated({"--duration", "30", "--rate", "2", "--seed", "6"}));
}

TEST(Simulate, LogIsSoundAndBackFromItsRawDump)
{
    const std::string log = simulated({"--duration", "20"});
    EXPECT_EQ(runTool({"info", "--strict", "-"}, log).status, 0);
    const ToolRun dump = runTool({"dump", "--format", "jsonl", "--raw", "-"}, log);
    EXPECT_EQ(dump.output.find("\"bytes\""), std::string::npos);
    EXPECT_TRUE(runTool({"encode", "-"}, dump.output).output == log);
}

TEST(Simulate, DamageLeavesTheOtherBlocks)
{
    const std::vector<std::string> sound = rawLines(simulated({"--duration", "120"}));
    const std::string stream = simulated({"--duration", "120", "--damage"});
    EXPECT_EQ(runTool({"info", "--strict", "-"}, stream).status, 2);
    const std::vector<std::string> damaged = rawLines(stream);
    EXPECT_LT(damaged.size(), sound.size());
    EXPECT_GT(damaged.size(), sound.size() * 8 / 10);
    auto place = sound.begin();
    for (const std::string& line : damaged) {
        place = std::find(place, sound.end(), line);
        ASSERT_NE(place, sound.end()) << line;
        ++place;
    }
}

TEST(Simulate, MixedLogHasTheSameBlocksAndNoDamage)
{
    const std::string mixed = simulated({"--duration", "20", "--mixed"});
    EXPECT_TRUE(runTool({"cut", "-"}, mixed).output == simulated({"--duration", "20"}));
    const ToolRun info = runTool({"info", "--json", "--strict", "-"}, mixed);
    EXPECT_EQ(info.status, 0);
    const json summary = json::parse(info.output);
    EXPECT_EQ(summary["droppedBytes"], 0);
    uint64_t bytes = 0;
    for (const json& type : summary["types"])
        bytes += type["bytes"].get<uint64_t>();
    for (const json& kind : summary["neighbours"])
        bytes += kind["bytes"].get<uint64_t>();
    EXPECT_EQ(bytes, mixed.size());
    EXPECT_EQ(summary["neighbours"]["nmea"]["count"], 20);
    EXPECT_EQ(summary["neighbours"]["rtcm3"]["count"], 6);
    EXPECT_EQ(summary["neighbours"]["ascii"]["count"], 5);
}

// A carrier that changes as the Doppler says, from epoch to epoch.
TEST(Simulate, MeasurementsAgreeWithEachOther)
{
    const std::string log = simulated({"--duration", "600", "--rate", "0.1"});
    const ToolRun run = runTool({"dump", "--format", "jsonl", "--type", "MeasEpoch2", "-"}, log);
    struct Last {
        double range;
        double doppler;
        double phase;
    };
    std::map<std::string, Last> last;
    size_t compared = 0;
    for (const std::string& line : linesOf(run.output)) {
        std::map<std::string, Last> now;
        const json message = json::parse(line);
        for (const json& entry : message["fields"]["Type1"]) {
            const Last value = {entry["CodeRange"], entry["DopplerHz"], entry["CarrierPhase"]};
            EXPECT_GT(value.range, 19e6);
            EXPECT_LT(value.range, 41.5e6);
            EXPECT_GT(entry["CN0_dBHz"], 30);
            EXPECT_LT(entry["CN0_dBHz"], 53);
            const std::string satellite = entry["SVID"];
            if (const auto before = last.find(satellite); before != last.end()) {
                const double wavelength = entry["Wavelength"];
                const double mean = (value.doppler + before->second.doppler) / 2;
                EXPECT_NEAR(value.phase - before->second.phase, -mean * 10, 10) << satellite;
                EXPECT_NEAR(value.range - before->second.range, -mean * 10 * wavelength, 15)
                    << satellite;
                ++compared;
            }
            now[satellite] = value;
        }
        EXPECT_GE(now.size(), 5U);
        last = std::move(now);
    }
    EXPECT_GT(compared, 300U);
}

// Frames of RTCM 3: their checksum is CRC-24Q, by which a frame with its checksum leaves nothing.
TEST(Simulate, CorrectionsAreWholeMessages)
{
    const ToolRun run =
        runTool({"extract", "--mode", "rtcm3", "-"}, simulated({"--duration", "11"}));
    const auto bits = [&run](size_t from, size_t count) {
        uint64_t value = 0;
        for (size_t i = from; i < from + count; ++i)
            value = value << 1U | (static_cast<uint8_t>(run.output[i / 8]) >> (7 - i % 8) & 1U);
        return value;
    };
    std::vector<uint64_t> numbers;
    for (size_t start = 0; start < run.output.size() * 8;) {
        ASSERT_EQ(bits(start, 14), 0xd300U >> 2U);
        const size_t end = start + 24 + bits(start + 14, 10) * 8 + 24;
        ASSERT_LE(end, run.output.size() * 8);
        uint32_t rest = 0;
        for (size_t i = start; i < end; ++i) {
            rest = rest << 1U | static_cast<uint32_t>(bits(i, 1));
            rest ^= (rest >> 24U) * 0x1864cfbU;
        }
        EXPECT_EQ(rest, 0U);
        EXPECT_EQ(bits(start + 36, 12), 1042U);
        numbers.push_back(bits(start + 24, 12));
        start = end;
    }
    EXPECT_EQ(numbers, (std::vector<uint64_t>{1005, 1006, 1033, 1005, 1006, 1033}));
}

TEST(Simulate, LogEndsAtItsSize)
{
    const size_t size = simulated({"--size", "300KB"}).size();
    EXPECT_GE(size, 300000U);
    EXPECT_LT(size, 320000U);
}
