#include "SameFields.h"
#include "Tool.h"

#include "TQX_codec.h"

#include <gtest/gtest.h>

// The samples were written by another encoder, which shares no code with this one.

using nlohmann::json;

namespace
{

std::vector<json> parsed(const std::string& text)
{
    std::vector<json> values;
    for (const std::string& line : linesOf(text))
        values.push_back(json::parse(line));
    return values;
}

void expectBlock(const json& expected, const json& actual)
{
    ASSERT_EQ(expected["block"], actual["block"]);
    const auto* layout = layoutOf(expected["block"].get<std::string>());
    ASSERT_NE(layout, nullptr);
    EXPECT_TRUE(sameFields(*layout, expected["fields"], actual["fields"]));
}

} // namespace

TEST(SampleStreams, RawDumpHoldsWhatTheEncoderWrote)
{
    const std::vector<json> expected = parsed(testData("data/samples/random.jsonl"));
    const ToolRun run = runTool({"dump", "--format", "jsonl", "--raw", "data/samples/random.tqx"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.words, "");
    const std::vector<json> actual = parsed(run.output);
    ASSERT_EQ(actual.size(), expected.size());
    for (size_t i = 0; i < expected.size(); ++i) {
        SCOPED_TRACE(i);
        expectBlock(expected[i], actual[i]);
    }
}

TEST(SampleStreams, FieldsAloneAreEncodedToTheSameFields)
{
    const ToolRun dump = runTool({"dump", "--format", "jsonl", "--raw", "data/samples/random.tqx"});
    std::string stripped;
    const std::vector<json> before = parsed(dump.output);
    for (json line : before) {
        line.erase("bytes");
        stripped += line.dump() + "\n";
    }
    const ToolRun encode = runTool({"encode", "-"}, stripped);
    EXPECT_EQ(encode.words, "");
    const std::vector<json> after =
        parsed(runTool({"dump", "--format", "jsonl", "--raw", "-"}, encode.output).output);
    ASSERT_EQ(after.size(), before.size());
    for (size_t i = 0; i < before.size(); ++i) {
        SCOPED_TRACE(i);
        // What only the bytes hold is gone, and with it the checksum that covered it.
        json expected = before[i];
        if (expected.contains("bytes"))
            expected["fields"]["CRC"] = after[i]["fields"]["CRC"];
        expectBlock(expected, after[i]);
    }
}

TEST(SampleStreams, DamageCostsNoIntactBlock)
{
    const std::vector<json> blocks = parsed(testData("data/samples/random.jsonl"));
    const json intact = json::parse(testData("data/samples/random-damaged.json"))["intact"];
    const ToolRun run =
        runTool({"dump", "--format", "jsonl", "--raw", "data/samples/random-damaged.tqx"});
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(run.words, "");
    const std::vector<json> actual = parsed(run.output);
    ASSERT_EQ(actual.size(), intact.size());
    for (size_t i = 0; i < intact.size(); ++i) {
        SCOPED_TRACE(i);
        if (intact[i].is_string()) {
            ASSERT_TRUE(actual[i].contains("number"));
            EXPECT_EQ("unknown " + actual[i]["number"].dump(), intact[i].get<std::string>());
        } else {
            expectBlock(blocks[intact[i].get<size_t>()], actual[i]);
        }
    }
}

TEST(SampleStreams, PiecesAndFilesMakeNoDifference)
{
    const std::string path = "data/samples/random-damaged.tqx";
    const ToolRun file = runTool({"dump", "--format", "jsonl", path.c_str()});
    const ToolRun pipe = runTool({"dump", "--format", "jsonl", "-"}, testData(path));
    EXPECT_EQ(file.output, pipe.output);
    const ToolRun twice = runTool({"dump", "--format", "jsonl", path.c_str(), path.c_str()});
    EXPECT_EQ(twice.output, file.output + file.output);
    // A block that begins in the file and ends on standard input.
    const ToolRun whole =
        runTool({"dump", "--strict", "tool/data/cut.tqx", "-"},
                runTool({"encode", "tool/data/documented.jsonl"}).output.substr(315));
    EXPECT_EQ(whole.status, 0) << whole.words;
    EXPECT_NE(whole.output.find("WX-20"), std::string::npos) << whole.output;
}
