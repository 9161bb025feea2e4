#include "Tool.h"

#include <gtest/gtest.h>

#include <QProcess>
#include <QTemporaryFile>

namespace
{

struct Case {
    const char* name;
    QStringList arguments;
    int status;
    const char* words; ///< part of what standard error says, "" for nothing at all
};

void PrintTo(const Case& value, std::ostream* stream)
{
    *stream << value.name;
}

class ExitStatusTest : public testing::TestWithParam<Case>
{
};

} // namespace

TEST_P(ExitStatusTest, IsAsDocumented)
{
    const Case& expected = GetParam();
    const ToolRun run = runTool(expected.arguments);
    EXPECT_EQ(run.status, expected.status) << run.words;
    if (*expected.words == '\0') {
        EXPECT_EQ(run.words, "");
    } else {
        EXPECT_NE(run.words.find(expected.words), std::string::npos) << run.words;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Tool, ExitStatusTest,
    testing::Values(
        Case{"Sound", {"info", "--strict", "data/samples/random.tqx"}, 0, ""},
        Case{"Damaged",
             {"dump", "data/samples/random-damaged.tqx"},
             0,
             "tqx: data/samples/random-damaged.tqx: 1460: 33 bytes belong to no block, 1 bad "
             "checksum\n"},
        Case{"DamagedQuiet", {"dump", "-q", "data/samples/random-damaged.tqx"}, 0, ""},
        Case{"DamageIsInTheSummary", {"info", "data/samples/random-damaged.tqx"}, 0, ""},
        Case{"DamagedStrict", {"dump", "-q", "--strict", "data/samples/random-damaged.tqx"}, 2, ""},
        Case{"UnknownAndUnselectedTypesAreNoDamage",
             {"dump", "--strict", "--type", "4014", "data/samples/random.tqx"},
             0,
             ""},
        Case{"NoBlocks",
             {"info", "-q", "--strict", "tool/data/documented.jsonl"},
             1,
             "tqx: tool/data/documented.jsonl: holds no TQX blocks, it seems to be JSON Lines"},
        Case{"CutOff",
             {"dump", "--strict", "data/samples/random.tqx", "tool/data/cut.tqx"},
             2,
             "tqx: tool/data/cut.tqx: 0: 55 bytes belong to no block, the input ends inside a "
             "block\n"},
        Case{"OnlyDamageIsReportedBetweenBlocks",
             {"dump", "--strict", "tool/data/mixed.tqx"},
             2,
             "tqx: tool/data/mixed.tqx: 724: 82 bytes belong to no block\n"},
        Case{"Empty", {"cut", "--strict", "/dev/null"}, 0, "tqx: /dev/null: empty\n"},
        Case{"NoSuchFile", {"info", "no/such/file"}, 1, "tqx: no/such/file: No such file"},
        Case{"FileAfterMissingOneIsRead",
             {"info", "no/such/file", "data/samples/random.tqx"},
             1,
             "tqx: no/such/file: "},
        Case{"Directory", {"info", "data"}, 1, "tqx: data: "},
        Case{"CannotWrite",
             {"dump", "-o", "no/such/file", "data/samples/random.tqx"},
             1,
             "tqx: no/such/file: "},
        Case{"CannotWriteFolder",
             {"dump", "--format", "csv", "-o", "CMakeLists.txt", "data/samples/random.tqx"},
             1,
             "tqx: CMakeLists.txt: Not a directory"},
        Case{"SeveralTypesInOneTable",
             {"dump", "--format", "csv", "--type", "P?T*,4027", "data/samples/random.tqx"},
             1,
             "tqx: one csv file holds one type, but"},
        Case{"InputAsOutput",
             {"cut", "-o", "data/samples/../samples/random.tqx", "data/samples/random.tqx"},
             1,
             "tqx: data/samples/../samples/random.tqx is an input"},
        Case{"InputAsOutputOfEncode",
             {"encode", "CMakeLists.txt", "-o", "../tests/CMakeLists.txt"},
             1,
             "tqx: ../tests/CMakeLists.txt is an input"},
        Case{"NoFolder",
             {"dump", "--format", "csv", "-o", "CMakeLists.txt/x", "data/samples/random.tqx"},
             1,
             "tqx: CMakeLists.txt/x: Not a directory"},
        Case{"FullDisk",
             {"cut", "-o", "/dev/full", "data/samples/random.tqx"},
             1,
             "tqx: /dev/full: No space left"},
        Case{"NoCommand", {}, 1, "tqx: "},
        Case{"UnknownCommand", {"bump"}, 1, "did you mean dump?"},
        Case{
            "NoFile", {"info"}, 1, "tqx: info: FILE is required, - for standard input: tqx info -"},
        Case{
            "UnknownOptionOfTheProgram", {"--verion"}, 1, "did you mean --version? (see tqx help)"},
        Case{"OptionTwice",
             {"dump", "--format", "text", "--format", "csv", "data/samples/random.tqx"},
             1,
             "tqx: dump: --format is given 2 times, but takes only one value"},
        Case{"OptionWithoutValue", {"dump", "--type"}, 1, "--type needs a value: TYPE,TYPE"},
        Case{"UnknownOptionWithValue", {"info", "x", "--stric=1"}, 1, "did you mean --strict?"},
        Case{"FormatInCapitals", {"dump", "--format", "JSONL", "data/samples/random.tqx"}, 0, ""},
        Case{"ModeInCapitals", {"extract", "--mode", "RTCM3", "data/samples/random.tqx"}, 0, ""},
        Case{"TrackInCapitals", {"simulate", "--track", "Circle", "--duration", "0"}, 0, ""},
        Case{"SafeTextsOutsideCsv",
             {"dump", "--csv-safe", "data/samples/random.tqx"},
             1,
             "tqx: dump: --csv-safe goes with --format csv"},
        Case{"DurationWithUnit",
             {"simulate", "--duration", "1h"},
             1,
             "--duration: '1h' is not a number of seconds, such as 60"},
        Case{"DurationNoNumber", {"simulate", "--duration", "nan"}, 1, "'nan' is not a number"},
        Case{"RateNoNumber", {"simulate", "--rate", "nan"}, 1, "'nan' is not a number"},
        Case{"SpeedNoNumber", {"simulate", "--speed", "nan"}, 1, "'nan' is not a number"},
        Case{"PositionNoNumber", {"simulate", "--position", "nan,0,0"}, 1, "'nan' is not a number"},
        Case{"PositionIncomplete", {"simulate", "--position", "1,2"}, 1, "needs three numbers"},
        Case{"SeedNegative", {"simulate", "--seed", "-1"}, 1, "'-1' is not a whole number"},
        Case{"SeedTooLarge",
             {"simulate", "--seed", "18446744073709551616"},
             1,
             "is not in the range 0 to 18446744073709551615"},
        Case{"EveryNegative",
             {"cut", "--every", "-1", "data/samples/random.tqx"},
             1,
             "'-1' is not a whole number"},
        Case{"StartInHexadecimal", {"simulate", "--start", "0x960:0"}, 1, "0x960:0 is not a start"},
        Case{"StartNoNumber", {"simulate", "--start", "2400:nan"}, 1, "2400:nan is not a start"},
        Case{"UnknownOption",
             {"dump", "--typ", "data/samples/random.tqx"},
             1,
             "tqx: dump: there is no option named --typ, did you mean --type?"},
        Case{"UnknownType",
             {"dump", "--type", "PVTGeodetik2", "data/samples/random.tqx"},
             1,
             "tqx: there is no type named PVTGeodetik2, did you mean PVTGeodetic2?"},
        Case{"SubBlockSelected",
             {"dump", "--type", "AGCState", "data/samples/random.tqx"},
             1,
             "AGCState is a sub-block"},
        Case{"UnknownField",
             {"dump", "--field", "Undulatin", "data/samples/random.tqx"},
             1,
             "did you mean Undulation?"},
        Case{"BlockInFieldName",
             {"dump", "--field", "TOW,pvtgeodetic2.Heigth", "data/samples/random.tqx"},
             1,
             "tqx: there is no field of PVTGeodetic2 named Heigth, did you mean Height?"},
        Case{"NumberTooLarge",
             {"dump", "--type", "8192", "data/samples/random.tqx"},
             1,
             "block numbers go up to 8191"},
        Case{"NothingToExtract",
             {"extract", "-"},
             1,
             "tqx: extract: --mode or --between is required"},
        Case{"CorrectionsBetweenBlocks",
             {"extract", "--mode", "rtcm3", "--between", "rtcm3", "-"},
             1,
             "tqx: extract: --mode excludes --between"},
        Case{"NeighboursHaveNoFields",
             {"extract", "--between", "nmea", "--where", "NrSV > 4", "-"},
             1,
             "tqx: extract: --where excludes --between"},
        Case{"ExplainBehindTheEnd",
             {"explain", "data/samples/random.tqx@1000000000"},
             1,
             "1000000000: the input has "},
        Case{"ExplainNoOffset", {"explain", "data/samples/random.tqx@x"}, 1, "x is not an offset"},
        Case{"UnknownCode",
             {"error", "-100000"},
             1,
             "tqx: -100000 is not a code; they go from -1 to -6073\n"},
        Case{"UnknownCodeOfADescription",
             {"error", "--description", "schema/station.yaml", "-100068"},
             1,
             "tqx: -100068 is not a code; they go from -1 to -6073 and from -100000 to -100067\n"},
        Case{"UnknownCodeName", {"error", "TQX_ERR_EOX"}, 1, "did you mean TQX_ERR_EOF?"},
        Case{"BadStart", {"simulate", "--start", "2400:604800"}, 1, "2400:604800 is not a start"},
        Case{"BadSize", {"simulate", "--size", "-1"}, 1, "simulate: --size: '-1' is not a size"},
        Case{"BadTrack", {"simulate", "--track", "x"}, 1, "x not in {static,circle,line}"},
        Case{"BadPosition", {"simulate", "--position", "91,0,0"}, 1, "simulate: --position needs"},
        Case{"BadRate", {"simulate", "--rate", "300"}, 1, "tqx: simulate: 300 Hz"},
        Case{"UnknownTopic", {"help", "bump"}, 1, "did you mean dump?"},
        Case{"Help", {"--help"}, 0, ""}, Case{"HelpOfCommand", {"help", "dump"}, 0, ""},
        Case{"Version", {"--version"}, 0, ""}),
    [](const auto& instance) { return instance.param.name; });

// The program still has megabytes to write when its reader goes away.
TEST(Tool, EndsQuietlyWhenNobodyReads)
{
    constexpr int patience = 60000;
    QProcess process;
    process.start(TQX_TOOL, {"simulate", "--duration", "20000"});
    ASSERT_TRUE(process.waitForReadyRead(patience));
    process.closeReadChannel(QProcess::StandardOutput);
    ASSERT_TRUE(process.waitForFinished(patience));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(process.exitCode(), 0);
    EXPECT_EQ(process.readAllStandardError().toStdString(), "");
}

// The file would grow as long as the disk has room.
TEST(Tool, RefusesToReadWhatStandardOutputAppendsTo)
{
    constexpr int patience = 10000;
    QTemporaryFile log;
    ASSERT_TRUE(log.open());
    log.write(QByteArray::fromStdString(testData("data/samples/random.tqx")));
    ASSERT_TRUE(log.flush());
    const qint64 size = log.size();
    QProcess process;
    process.setStandardOutputFile(log.fileName(), QIODevice::Append);
    process.start(TQX_TOOL, {"cut", log.fileName()});
    EXPECT_TRUE(process.waitForFinished(patience));
    process.kill();
    EXPECT_EQ(process.exitCode(), 1);
    EXPECT_EQ(log.size(), size);
}
