#include "Tool.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <fstream>
#include <functional>
#include <sstream>

// Runs that find nothing to write.

namespace
{

const char* const nmea = "$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47\r\n";

/// For a table, which is set up whether its tests run or not.
std::function<std::string()> just(const std::string& text)
{
    return [text] { return text; };
}

std::string times(unsigned count, const std::string& text)
{
    std::string all;
    while (count-- != 0)
        all += text;
    return all;
}

std::string rtcm3()
{
    return runTool({"extract", "--mode", "rtcm3", "-"},
                   runTool({"simulate", "--duration", "60"}).output)
        .output;
}

/// Words of 30 bits with parity as the interface of GPS has it, six bits a byte, the first lowest.
std::string rtcm2()
{
    // Which bits of data each parity bit sums, counted from 1, and which of the last two bits of
    // the word before.
    const std::vector<std::pair<int, std::vector<int>>> sums = {
        {29, {1, 2, 3, 5, 6, 10, 11, 12, 13, 14, 17, 18, 20, 23}},
        {30, {2, 3, 4, 6, 7, 11, 12, 13, 14, 15, 18, 19, 21, 24}},
        {29, {1, 3, 4, 5, 7, 8, 12, 13, 14, 15, 16, 19, 20, 22}},
        {30, {2, 4, 5, 6, 8, 9, 13, 14, 15, 16, 17, 20, 21, 23}},
        {30, {1, 3, 5, 6, 7, 9, 10, 14, 15, 16, 17, 18, 21, 22, 24}},
        {29, {3, 5, 6, 8, 9, 10, 11, 13, 15, 19, 22, 23, 24}}};
    std::vector<bool> before(31);
    std::string bytes;
    for (unsigned word = 0; word < 60; ++word) {
        const unsigned data = word % 2 == 0 ? 0x660000U + word : 0x5a5a5aU * word;
        std::vector<bool> bits(31);
        for (unsigned i = 1; i <= 24; ++i)
            bits[i] = (data >> (24 - i) & 1U) != 0;
        for (size_t parity = 0; parity < sums.size(); ++parity) {
            bool sum = before[static_cast<size_t>(sums[parity].first)];
            for (const int bit : sums[parity].second)
                sum = sum != bits[static_cast<size_t>(bit)];
            bits[25 + parity] = sum;
        }
        for (size_t i = 1; i <= 24; ++i)
            bits[i] = bits[i] != before[30];
        before = bits;
        for (size_t i = 1; i <= 30; i += 6) {
            unsigned byte = 0x40;
            for (size_t bit = 0; bit < 6; ++bit)
                byte |= bits[i + bit] ? 1U << bit : 0U;
            bytes += static_cast<char>(byte);
        }
    }
    return bytes;
}

struct Case {
    const char* name;
    std::function<std::string()> input;
    int status;
    const char* guess; ///< "" when nothing is said
};

void PrintTo(const Case& value, std::ostream* stream)
{
    *stream << value.name;
}

class NoBlocks : public testing::TestWithParam<Case>
{
};

std::string contentOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

} // namespace

TEST_P(NoBlocks, SaysWhatItSeemsToBe)
{
    const Case& expected = GetParam();
    const std::string input = expected.input();
    for (const char* command : {"info", "cut", "dump"}) {
        const ToolRun run = runTool({command, "-"}, input);
        EXPECT_EQ(run.status, expected.status) << run.words;
        const std::string words =
            std::string("tqx: standard input: holds no TQX blocks, it seems to be ") +
            expected.guess + "\n";
        EXPECT_EQ(run.words.find(words) != std::string::npos, *expected.guess != '\0') << run.words;
        const ToolRun quiet = runTool({command, "-q", "-"}, input);
        EXPECT_EQ(quiet.status, expected.status);
        EXPECT_EQ(quiet.words, expected.status == 0 ? "" : words);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Tool, NoBlocks,
    testing::Values(
        Case{"Empty", just(""), 0, ""}, Case{"Bzip2", just("BZh91AY&SY"), 1, "compressed by bzip2"},
        Case{"Zip", just("PK\x03\x04 abc"), 1, "a zip archive"},
        Case{"Text", just("one line\nand another\n"), 1, "text"},
        Case{"Rinex",
             just("     3.04           OBSERVATION DATA    M                   RINEX VERSION / "
                  "TYPE\n"),
             1, "RINEX"},
        Case{"Noise", just(std::string("\x01\x00\xff\x80", 4)), 1, "binary data of another kind"},
        Case{"CutOff", [] { return testData("data/samples/random.tqx").substr(0, 40); }, 1,
             "TQX, damaged or cut off"},
        Case{"Nmea", just(times(20, nmea)), 0, "NMEA"},
        Case{"NmeaFromWithinASentence", just(std::string(nmea).substr(30) + times(100, nmea)), 0,
             "NMEA"},
        Case{"NmeaOfWrongChecksum", just(times(20, "$GPGGA,123519*00\r\n")), 1, "text"},
        Case{"TextWithASentence", just(nmea + times(20, "and much other text\n")), 1, "text"},
        Case{"Rtcm3", rtcm3, 0, "RTCM 3"},
        Case{"Rtcm3CutOff", [] { return rtcm3().substr(20, 300); }, 0, "RTCM 3"},
        Case{"NmeaAndRtcm3", [] { return times(3, nmea) + rtcm3(); }, 0, "NMEA and RTCM 3"},
        Case{"Rtcm2", rtcm2, 0, "RTCM 2"},
        Case{"Rtcm2CutOff", [] { return rtcm2().substr(13); }, 0, "RTCM 2"}),
    [](const auto& instance) { return instance.param.name; });

// It does not matter that none is selected.
TEST(Tool, UnselectedBlocksAreBlocks)
{
    EXPECT_EQ(runTool({"cut", "--type", "4001", "data/samples/random.tqx"}).status, 0);
}

TEST(Tool, KeepsTheOutputWhenAnInputDoesNotOpen)
{
    const QTemporaryDir folder;
    const QString kept = folder.filePath("kept.csv");
    const std::string content = "as it was";
    const std::vector<QStringList> commands = {{"cut"},
                                               {"dump"},
                                               {"dump", "--format", "csv", "--type", "4007"},
                                               {"extract", "--mode", "rtcm3"},
                                               {"encode"}};
    for (const QStringList& command : commands) {
        for (const char* wrong : {"no/such/file", "data"}) {
            std::ofstream(kept.toStdString(), std::ios::binary) << content;
            const ToolRun run =
                runTool(command + QStringList{"-o", kept, "data/samples/random.tqx", wrong});
            EXPECT_EQ(run.status, 1);
            EXPECT_EQ(run.words.find(std::string("tqx: ") + wrong + ": "), 0U) << run.words;
            EXPECT_EQ(contentOf(kept.toStdString()), content) << command.front().toStdString();
        }
    }
    EXPECT_EQ(runTool({"cut", "-o", kept, "data/samples/random.tqx"}).status, 0);
    EXPECT_EQ(contentOf(kept.toStdString()), testData("data/samples/random.tqx"));
}
