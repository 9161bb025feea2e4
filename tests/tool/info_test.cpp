#include "Tool.h"
#include "tqx/log/summary/EpochSet.h"
#include "tqx/log/summary/Intervals.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <random>
#include <set>

using nlohmann::json;

namespace
{

struct Timed {
    const char* block;
    unsigned second;
};

/// A stream of blocks with these times of week 2400.
std::string streamOf(const std::vector<Timed>& blocks)
{
    std::string lines;
    for (const Timed& one : blocks) {
        lines += json{{"block", one.block}, {"fields", {{"WNc", 2400}, {"TOW", one.second * 1000}}}}
                     .dump() +
                 "\n";
    }
    const ToolRun run = runTool({"encode", "-"}, lines);
    EXPECT_EQ(run.status, 0) << run.words;
    return run.output;
}

/// One block a second.
void addSeconds(std::vector<Timed>& blocks, const char* block, unsigned from, unsigned to)
{
    for (unsigned second = from; second < to; ++second)
        blocks.push_back({block, second});
}

json infoOf(const std::vector<Timed>& blocks)
{
    return json::parse(runTool({"info", "--json", "-"}, streamOf(blocks)).output);
}

json infoOf(const std::string& stream)
{
    return json::parse(runTool({"info", "--json", "-"}, stream).output);
}

std::vector<double> startsOf(const json& gaps)
{
    std::vector<double> starts;
    for (const json& gap : gaps)
        starts.push_back(gap["after"]["tow"]);
    return starts;
}

/// Lines of the text after a heading, up to an empty one.
std::vector<std::string> paragraphOf(const std::string& text, const std::string& heading)
{
    std::vector<std::string> found;
    bool isIn = false;
    for (const std::string& line : linesOf(text)) {
        if (isIn && line.empty())
            break;
        if (isIn)
            found.push_back(line);
        isIn = isIn || line.find(heading) == 2;
    }
    return found;
}

} // namespace

TEST(Info, FirstAndLastAreTheEarliestAndTheLatest)
{
    std::vector<Timed> blocks;
    addSeconds(blocks, "BatteryStatus", 100, 110);
    addSeconds(blocks, "BatteryStatus", 0, 10);
    const json info = infoOf(blocks);
    EXPECT_EQ(info["first"]["tow"], 0);
    EXPECT_EQ(info["last"]["tow"], 109);
    EXPECT_EQ(info["stepsBack"], 1);
    EXPECT_EQ(info["firstStepBack"]["offset"], 200);
    EXPECT_EQ(info["repeatedEpochs"], 0) << "one file came before another that is older";
}

TEST(Info, CountsRepeatedEpochs)
{
    std::vector<Timed> blocks;
    for (const unsigned start : {0U, 6U, 3U}) {
        for (unsigned second = start; second < start + 10; ++second) {
            blocks.push_back({"BatteryStatus", second});
            blocks.push_back({"BatteryStatus", second});
            blocks.push_back({"ReceiverStatus2", second});
        }
    }
    const std::string stream = streamOf(blocks);
    const json info = infoOf(stream);
    EXPECT_EQ(info["stepsBack"], 2) << "of two types together";
    EXPECT_EQ(info["repeatedEpochs"], 10) << "3 to 12, each of them once";
    const std::string text = runTool({"info", "-"}, stream).output;
    EXPECT_NE(text.find("  time runs back   2 times, first at "), std::string::npos) << text;
    EXPECT_NE(text.find("  repeated epochs  10\n"), std::string::npos) << text;
}

// Some types carry the time at which a satellite sent what they hold.
TEST(Info, TypesMayLagBehindOthers)
{
    std::vector<Timed> blocks;
    for (unsigned second = 10; second < 30; ++second) {
        blocks.push_back({"BatteryStatus", second});
        blocks.push_back({"ReceiverStatus2", second - 2});
    }
    const json info = infoOf(blocks);
    EXPECT_EQ(info["stepsBack"], 0);
    EXPECT_EQ(info["repeatedEpochs"], 0);
    EXPECT_EQ(info["outagesCount"], 0);
}

TEST(Info, ListsEachGapAndOutage)
{
    std::vector<Timed> blocks;
    addSeconds(blocks, "BatteryStatus", 0, 5);
    addSeconds(blocks, "BatteryStatus", 6, 15);
    blocks.push_back({"ReceiverStatus2", 15}); // a gap of one type only
    addSeconds(blocks, "BatteryStatus", 16, 20);
    addSeconds(blocks, "BatteryStatus", 21, 30);
    addSeconds(blocks, "BatteryStatus", 33, 40);
    const std::string stream = streamOf(blocks);
    const json info = infoOf(stream);
    const json& type = info["types"].back();
    EXPECT_EQ(type["name"], "BatteryStatus");
    EXPECT_EQ(type["gapsCount"], 4);
    EXPECT_EQ(startsOf(type["gaps"]), (std::vector<double>{4, 14, 19, 29}));
    EXPECT_EQ(startsOf(info["outages"]), (std::vector<double>{4, 19, 29}));
    const std::vector<std::string> outages =
        paragraphOf(runTool({"info", "-"}, stream).output, "outages");
    ASSERT_EQ(outages.size(), 3U);
    EXPECT_NE(outages[0].find("4 s after 2400:29.000"), std::string::npos) << outages[0];
    EXPECT_NE(outages[1].find("2 s after 2400:4.000"), std::string::npos) << outages[1];
}

TEST(Info, RateAfterManyDifferentIntervals)
{
    std::vector<Timed> blocks;
    unsigned second = 0;
    for (unsigned interval = 1000; interval < 1150; ++interval)
        blocks.push_back({"BatteryStatus", second += interval});
    addSeconds(blocks, "BatteryStatus", second + 1, second + 300);
    const json info = infoOf(blocks);
    EXPECT_EQ(info["types"][0]["interval"], 1);
    EXPECT_EQ(info["types"][0]["gapsCount"], 149) << "the first block begins none";
}

TEST(Info, NamesBlocksThatAreUnknownOrDoNotDecode)
{
    const std::string unknown =
        runTool({"encode", "-"}, R"({"number":8191,"bytes":"JECbZf8fEADQ7d8MYAk0Eg=="})").output;
    const json info = infoOf(testData("tool/data/undecodable.tqx") + unknown + unknown);
    ASSERT_EQ(info["undecodableBlocks"].size(), 1U);
    EXPECT_EQ(info["undecodableBlocks"][0]["offset"], 0);
    EXPECT_EQ(info["undecodableBlocks"][0]["code"], -4785);
    ASSERT_EQ(info["unknownBlocks"].size(), 2U);
    EXPECT_EQ(info["unknownBlocks"][1],
              (json{{"file", "standard input"}, {"number", 8191}, {"offset", 56}}));
}

TEST(Intervals, ListTheFirstGapsAndCountTheRest)
{
    constexpr size_t room = 1000;
    constexpr uint64_t gaps = 5000;
    size_t left = room;
    tqx::Intervals intervals(left);
    tqx::GnssMillis time = 0;
    for (uint64_t i = 0; i < gaps; ++i) {
        for (const uint64_t interval : {1000U, 1000U, 3000U})
            intervals.add(time += interval);
    }
    ASSERT_EQ(intervals.getUsual(), 1000U);
    EXPECT_EQ(intervals.getGapCount(1000), gaps);
    const std::vector<tqx::Intervals::Gap> listed = intervals.getGaps(1000, gaps);
    EXPECT_GT(listed.size(), room * 3 / 4) << "little but gaps is kept when there is no room";
    EXPECT_LE(listed.size(), room);
    for (size_t i = 0; i < listed.size(); ++i)
        ASSERT_EQ(listed[i].after, 2000U + i * 5000) << "all of the first ones";
    EXPECT_EQ(intervals.getGaps(1000, 10).size(), 10U);
}

TEST(EpochSet, KnowsWhatWasAdded)
{
    for (unsigned seed = 0; seed < 200; ++seed) {
        std::mt19937 random(seed);
        size_t room = 10000;
        tqx::EpochSet epochs(room);
        std::set<tqx::GnssMillis> expected;
        for (int series = 0; series < 20; ++series) {
            tqx::GnssMillis time = random() % 1000;
            const uint64_t period = 1 + random() % 20;
            for (uint64_t count = random() % 50; count != 0; --count, time += period)
                ASSERT_EQ(epochs.add(time), expected.insert(time).second) << seed << ", " << time;
        }
    }
}

TEST(EpochSet, KeepsALongSeriesInLittleRoom)
{
    size_t room = 1;
    tqx::EpochSet epochs(room);
    for (int pass = 0; pass < 2; ++pass) {
        for (tqx::GnssMillis time = 1000; time < 100000; time += 100)
            ASSERT_EQ(epochs.add(time), pass == 0);
    }
}

TEST(InfoEach, ShowsEachFileAsOnItsOwn)
{
    const QStringList files = {"tool/data/gaps.tqx", "data/samples/random-damaged.tqx",
                               "tool/data/mixed.tqx"};
    const std::vector<QStringList> selections = {{}, {"--every", "3"}, {"--limit", "2"}};
    for (const QStringList& options : selections) {
        json expected = json::array();
        for (const QString& file : files) {
            expected.push_back(
                json::parse(runTool(QStringList{"info", "--json", file} + options).output));
        }
        const ToolRun run = runTool(QStringList{"info", "--each", "--json"} + options + files);
        EXPECT_EQ(run.status, 0) << run.words;
        EXPECT_EQ(json::parse(run.output), expected);
    }
    const QStringList each = {"info", "--each", "-q"};
    EXPECT_EQ(runTool(each + files + QStringList{"--strict"}).status, 2);
    const ToolRun missing = runTool(each + QStringList{"missing", "tool/data/gaps.tqx"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.output, runTool(each + QStringList{"tool/data/gaps.tqx"}).output);
    EXPECT_EQ(runTool(each + QStringList{"--json", "missing"}).output, "[]\n");
}
