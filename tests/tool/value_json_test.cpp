#include "RandomStream.h"
#include "TQX_codec.h"
#include "Tool.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

// What lines of scaled values hold beside the fields.

using nlohmann::json;

namespace
{

std::vector<json> valueLines(const std::string& stream, const QStringList& more = {})
{
    const ToolRun run = runTool(QStringList{"dump", "-q", "--format", "jsonl", "-"} + more, stream);
    std::vector<json> lines;
    for (const std::string& line : linesOf(run.output))
        lines.push_back(json::parse(line));
    return lines;
}

json valuesOf(const std::string& rawLine)
{
    const ToolRun run = runTool({"encode", "-"}, rawLine);
    EXPECT_EQ(run.status, 0) << run.words;
    const std::vector<json> lines = valueLines(run.output);
    EXPECT_EQ(lines.size(), 1U);
    return lines.empty() ? json() : lines.front();
}

} // namespace

TEST(ValueJson, EachLineHasTheTimeOfItsBlock)
{
    struct Case {
        const char* line;
        const char* time;
    };
    const Case cases[] = {
        {R"({"block":"GPSNav","fields":{"TOW":604000100,"WNc":2300}})",
         R"({"scale":"GPS","gnss":"2024-02-10T23:46:40.100","utc":"2024-02-10T23:46:22.100Z"})"},
        // The last leap second that there was.
        {R"({"block":"GPSNav","fields":{"TOW":17500,"WNc":1930}})",
         R"({"scale":"GPS","gnss":"2017-01-01T00:00:17.500","utc":"2016-12-31T23:59:60.500Z"})"},
        {R"({"block":"GPSNav","fields":{"TOW":4294967295,"WNc":2300}})", "null"},
        {R"({"block":"GPSNav","fields":{"TOW":0,"WNc":65535}})", "null"},
    };
    for (const Case& one : cases)
        EXPECT_EQ(valuesOf(one.line)["time"], json::parse(one.time)) << one.line;
}

// A derived time has no value of its own for "not available"; it goes with what it is made of.
TEST(ValueJson, ContinuousTimeGoesWithTheTimeOfWeek)
{
    const std::string with = R"({"block":"GPSNav","fields":{"TOW":500}})";
    const std::string without = R"({"block":"GPSNav","fields":{"TOW":4294967295}})";
    EXPECT_EQ(valuesOf(with)["fields"]["TOWc"], 500);
    EXPECT_EQ(valuesOf(without)["fields"]["TOWc"], nullptr);
    const std::string block = runTool({"encode", "-"}, without).output;
    const auto output = [&](const QStringList& arguments) {
        return runTool(arguments, block).output;
    };
    const std::string text = output({"dump", "--field", "TOWc", "-"});
    EXPECT_NE(text.find("TOWc  DoNotUse\n"), std::string::npos) << text;
    const std::string table =
        output({"dump", "--format", "csv", "--type", "GPSNav", "--field", "TOWc", "-"});
    EXPECT_EQ(linesOf(table).back().back(), ',') << table;
    EXPECT_EQ(output({"cut", "--where", "has TOWc", "-"}), "");
    EXPECT_EQ(output({"cut", "--where", "TOWc > 0", "-"}), "");
    const std::string rows = output({"explain", "-@0"});
    EXPECT_NE(rows.find("TOWc", 0), std::string::npos);
    EXPECT_NE(rows.find("not available", rows.find("TOWc")), std::string::npos) << rows;
}

TEST(ValueJson, BlocksWithoutKnownFieldsHaveTheirBytes)
{
    const std::string stream =
        runTool({"encode", "-"}, R"({"number":8191,"bytes":"JECbZf8fEADQ7d8MYAk0Eg=="})").output +
        testData("tool/data/undecodable.tqx");
    const std::vector<std::string> raw = rawLines(stream);
    const std::vector<json> lines = valueLines(stream);
    ASSERT_EQ(lines.size(), raw.size());
    size_t undecodable = 0;
    for (size_t i = 0; i < lines.size(); ++i) {
        const json stored = json::parse(raw[i]);
        EXPECT_TRUE(lines[i].contains("time"));
        if (!stored.contains("number"))
            continue;
        EXPECT_EQ(lines[i]["number"], stored["number"]);
        EXPECT_EQ(lines[i]["bytes"], stored["bytes"]);
        if (!lines[i].contains("error"))
            continue;
        ++undecodable;
        EXPECT_EQ(lines[i]["error"]["name"], TQX_errorName(lines[i]["error"]["code"]));
        EXPECT_TRUE(lines[i].contains("name"));
    }
    EXPECT_EQ(lines[0]["number"], 8191);
    EXPECT_FALSE(lines[0].contains("error"));
    EXPECT_GT(undecodable, 0U);
    EXPECT_EQ(valueLines(stream, {"--field", "Height"}).size(), 0U);
}

// The stored value is finite, its meaning is not.
TEST(ValueJson, ValuesThatTheirScaleMakesInfiniteAreNamed)
{
    struct Case {
        const char* block;
        const char* array;
        const char* field;
    };
    for (const Case& one : {Case{"SysTimeOffset", "TimeOffset", "TimeOffset"},
                            Case{"FugroTimeOffset", "FugroTO", "ClockBias"}}) {
        json line = {{"block", one.block}};
        for (const double value : {1e300, -1e300, 1e290, -1.5})
            line["fields"][one.array].push_back({{one.field, value}});
        const json entries = valuesOf(line.dump())["fields"][one.array];
        EXPECT_EQ(entries[0][one.field], "Infinity");
        EXPECT_EQ(entries[1][one.field], "-Infinity");
        EXPECT_EQ(entries[2][one.field], 1e299);
        EXPECT_EQ(entries[3][one.field], -1.5e9);
        const std::string stream = runTool({"encode", "-"}, line.dump()).output;
        const std::string table =
            runTool({"dump", "--format", "csv", "--type", one.block, "-"}, stream).output;
        EXPECT_NE(table.find("-Infinity"), std::string::npos) << table;
        EXPECT_EQ(table.find("inf"), std::string::npos) << table;
        const std::string text = runTool({"dump", "-"}, stream).output;
        EXPECT_NE(text.find(" -inf nanosecond"), std::string::npos) << text;
    }
}

TEST(ValueJson, EveryLineOfRandomBlocksIsJson)
{
    EXPECT_GT(valueLines(randomStream()).size(), 600U);
}
