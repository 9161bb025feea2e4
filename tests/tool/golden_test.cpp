#include "TQX_Edition.h"
#include "Tool.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

// The output of commands against files in golden/. Set TQX_UPDATE_GOLDEN to write these files anew.

namespace
{

struct Case {
    const char* file;
    QStringList arguments;
};

void PrintTo(const Case& value, std::ostream* stream)
{
    *stream << value.file;
}

class GoldenTest : public testing::TestWithParam<Case>
{
};

/// A stream of one block of each of some types, with few sub-blocks.
const std::string& documentedStream()
{
    static const std::string stream = runTool({"encode", "tool/data/documented.jsonl"}).output;
    return stream;
}

} // namespace

TEST_P(GoldenTest, IsUnchanged)
{
    const std::string path = std::string("tool/golden/") + GetParam().file;
    const ToolRun run = runTool(GetParam().arguments, documentedStream());
    EXPECT_EQ(run.status, 0) << run.words;
    EXPECT_EQ(run.words, "");
    if (std::getenv("TQX_UPDATE_GOLDEN"))
        std::ofstream(TQX_TESTS_DIR "/" + path, std::ios::binary) << run.output;
    EXPECT_EQ(run.output, testData(path));
}

INSTANTIATE_TEST_SUITE_P(
    Tool, GoldenTest,
    testing::Values(
        Case{"dump.txt", {"dump", "-"}}, Case{"dump_raw.txt", {"dump", "--raw", "-"}},
        Case{"dump.jsonl", {"dump", "--format", "jsonl", "-"}},
        Case{"dump_raw.jsonl", {"dump", "--format", "jsonl", "--raw", "-"}},
        Case{"dump.csv", {"dump", "--format", "csv", "--type", "PVTGeodetic2", "-"}},
        Case{"dump_sub_blocks.csv",
             {"dump", "--format", "csv", "--field",
              "NrSV,Type1.SVID,Type1.Type2.CN0,CommonFlags,WNc", "--type", "MeasEpoch2", "-"}},
        Case{"dump_fields.txt",
             {"dump", "--field", "TOW,UpTime,FrontEnd_Code,Type2.CN0,Type1.SVID", "-"}},
        Case{"dump_fields.jsonl",
             {"dump", "--format", "jsonl", "--raw", "--not-type", "4027", "--field",
              "AGCState.Gain,PRN", "-"}},
        Case{"info.txt", {"info", "-"}}, Case{"info.jsonl", {"info", "--json", "-"}},
        Case{"info_damaged.txt", {"info", "data/samples/random-damaged.tqx"}},
        Case{"info_gaps.txt", {"info", "tool/data/gaps.tqx", "tool/data/undecodable.tqx"}},
        Case{"info_gaps.json", {"info", "--json", "tool/data/gaps.tqx"}},
        Case{"info_each.txt", {"info", "--each", "tool/data/gaps.tqx", "-", "tool/data/mixed.tqx"}},
        Case{"info_mixed.txt", {"info", "tool/data/mixed.tqx"}},
        Case{"info_mixed.json", {"info", "--json", "tool/data/mixed.tqx"}},
        Case{"explain.txt", {"explain", "-@96"}}, Case{"explain_unknown.txt", {"explain", "-@595"}},
        Case{"explain_bad_checksum.txt", {"explain", "data/samples/random-damaged.tqx@1460"}},
        Case{"explain_cut.txt", {"explain", "tool/data/cut.tqx"}},
        Case{"types_sub_block.txt", {"types", "AGCState"}},
        Case{"types_sub_block.json", {"types", "--json", "AGCState", "ChannelStateInfo"}},
        Case{"error.txt",
             {"error", "-1855", "-1", "-151", "-6073", "17", "tqx_err_invalid_message"}},
        Case{"help.txt", {"--help"}}, Case{"help_dump.txt", {"help", "dump"}}),
    [](const auto& instance) {
        std::string name = instance.param.file;
        for (char& character : name) {
            if (character == '.')
                character = '_';
        }
        return name;
    });

TEST(Tool, ListsAllCodes)
{
    const std::vector<std::string> lines = linesOf(runTool({"error", "--all"}).output);
    ASSERT_EQ(lines.size(), static_cast<size_t>(-Kor::MessageApi::TQX_lowestCode));
    EXPECT_EQ(lines.front(), "-1 TQX_ERR_INVALID_CRC");
    EXPECT_EQ(lines[1], "-2 TQX_ERR_CHANNELSTATEINFO_ANTENNA_EXT_BUFFER_OVERFLOW");
    EXPECT_EQ(lines[1854], "-1855 TQX_ERR_PVTGEODETIC2_LATENCY_EXT_BUFFER_OVERFLOW");
    EXPECT_EQ(lines[6072], "-6073 TQX_ERR_EOF");
}
