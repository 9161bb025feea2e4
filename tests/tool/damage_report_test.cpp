#include "Tool.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <cstring>

// How much is said of many damaged places, and of many lines that cannot be encoded.

namespace
{

constexpr size_t said = 10;

/// A number of blocks, each after junk.
std::string damagedStream(size_t places)
{
    const std::string block =
        runTool({"encode", "-"}, R"({"block":"GPSNav","fields":{"TOW":1000,"WNc":2400}})").output;
    std::string stream;
    for (size_t i = 0; i < places; ++i)
        stream += "junk" + block;
    return stream;
}

std::string undecodableStream(size_t blocks)
{
    std::string stream;
    for (size_t i = 0; i < blocks; ++i)
        stream += testData("tool/data/undecodable.tqx");
    return stream;
}

} // namespace

TEST(DamageReport, NamesTenPlacesAndSumsUpTheOthers)
{
    struct Case {
        size_t places;
        QStringList more;
        size_t lines;
        const char* last;
    };
    const Case cases[] = {
        {10, {}, 10, "tqx: standard input: "},
        {11, {}, 11, "tqx: 1 more damaged place: 4 bytes belong to no block (-v names them all)"},
        {25,
         {},
         11,
         "tqx: 15 more damaged places: 60 bytes belong to no block (-v names them all)"},
        {25, {"-v"}, 25, "tqx: standard input: "},
        {25, {"--verbose"}, 25, "tqx: standard input: "},
        {25, {"-q"}, 0, ""},
        {25, {"-q", "-v"}, 0, ""},
    };
    for (const char* command : {"dump", "cut"}) {
        for (const Case& one : cases) {
            const ToolRun run =
                runTool(QStringList{command, "-"} + one.more, damagedStream(one.places));
            const std::vector<std::string> lines = linesOf(run.words);
            ASSERT_EQ(lines.size(), one.lines) << run.words;
            EXPECT_EQ(lines.empty() ? "" : lines.back().substr(0, std::strlen(one.last)), one.last);
            EXPECT_EQ(run.status, 0);
        }
    }
}

TEST(DamageReport, CountsBlocksThatDoNotDecode)
{
    const std::vector<std::string> all =
        linesOf(runTool({"dump", "-v", "-"}, undecodableStream(12)).words);
    const std::vector<std::string> lines =
        linesOf(runTool({"dump", "-"}, undecodableStream(12)).words);
    ASSERT_EQ(lines.size(), said + 1);
    ASSERT_GT(all.size(), said + 1);
    EXPECT_EQ(lines.back(), "tqx: " + std::to_string(all.size() - said) +
                                " more damaged places: " + std::to_string(all.size() - said) +
                                " blocks do not decode (-v names them all)");
}

TEST(DamageReport, IsTheSameForLinesThatCannotBeEncoded)
{
    std::string input;
    for (int i = 0; i < 14; ++i)
        input += "{}\n";
    const ToolRun run = runTool({"encode", "-"}, input);
    EXPECT_EQ(run.status, 1);
    const std::vector<std::string> lines = linesOf(run.words);
    ASSERT_EQ(lines.size(), said + 1);
    EXPECT_EQ(lines.back(), "tqx: 4 more lines cannot be encoded (-v reports them all)");
    EXPECT_EQ(linesOf(runTool({"encode", "-v", "-"}, input).words).size(), 14U);
}
