#include "Tool.h"

#include <gtest/gtest.h>

#include <algorithm>

// Which blocks the options of dump, cut and the others select, and what is said about bad ones.

namespace
{

struct Case {
    const char* name;
    QStringList arguments;
    const char* expected; ///< the selected lines of data/selection.jsonl, or what is wrong
};

void PrintTo(const Case& value, std::ostream* stream)
{
    *stream << value.name;
}

std::string nameOf(const testing::TestParamInfo<Case>& instance)
{
    return instance.param.name;
}

class SelectedBlocks : public testing::TestWithParam<Case>
{
};

class BadSelection : public testing::TestWithParam<Case>
{
};

/// The blocks of data/selection.jsonl.
const std::string& allBlocks()
{
    static const std::string stream = runTool({"encode", "tool/data/selection.jsonl"}).output;
    return stream;
}

} // namespace

TEST_P(SelectedBlocks, AreCutOut)
{
    static const std::vector<std::string> all = rawLines(allBlocks());
    ASSERT_EQ(all.size(), 8U);
    const ToolRun run = runTool(QStringList{"cut", "-"} + GetParam().arguments, allBlocks());
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.words, "");
    std::string found;
    for (const std::string& line : rawLines(run.output))
        found += std::to_string(std::find(all.begin(), all.end(), line) - all.begin()) + " ";
    EXPECT_EQ(found, GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Tool, SelectedBlocks,
    testing::Values(
        Case{"Everything", {}, "0 1 2 3 4 5 6 7 "},
        Case{"NamesAndNumbers", {"--type", "asciiin,4027"}, "2 3 4 "},
        Case{"Pattern", {"--type", "p?t*2", "--not-type", "*Geodetic1"}, "0 1 7 "},
        Case{"NotPattern", {"--not-type", "*s*,PVT*", "--not-type", "5919"}, ""},
        // A block without a time goes with the one before it.
        Case{"FromWeek", {"--from", "2399:604799.999"}, "1 2 3 4 5 6 7 "},
        Case{"ToWeek", {"--to", "2400:0"}, "0 1 "},
        Case{"WeekWithoutFraction", {"--from", "2400:0", "--to", "2400:1"}, "2 3 "},
        Case{"GpsTime", {"--from", "2026-01-04T00:00:01.000 GPS"}, "4 5 6 7 "},
        Case{"Utc", {"--from", "2026-01-03T23:59:43Z"}, "4 5 6 7 "},
        Case{"UtcInWords", {"--to", "2026-01-03 23:59:43.5 UTC"}, "0 1 2 3 4 "},
        Case{"DateAlone", {"--from", "2026-01-04 GPS"}, "2 3 4 5 6 7 "},
        Case{"NoTimeYet", {"--type", "ASCIIIn", "--from", "1980-01-06 GPS"}, "3 4 "},
        Case{"Every", {"--every", "2"}, "0 2 3 5 6 7 "},
        Case{"EveryIsDecimal", {"--every", "02"}, "0 2 3 5 6 7 "},
        Case{"EveryOfWhatTheOthersSelect", {"--every", "2", "--where", "Vn < 1"}, "0 7 "},
        Case{"Interval", {"--interval", "2"}, "0 2 3 7 "},
        Case{"IntervalInMilliseconds", {"--interval", "0.5"}, "0 2 3 4 5 7 "},
        Case{"IntervalThatDividesNoWeek", {"--interval", "11"}, ""},
        Case{"IntervalOfAWeek", {"--interval", "604800"}, "2 3 "},
        Case{"IntervalWithTheOthers",
             {"--interval", "1", "--from", "2400:0.001", "--every", "2", "--where", "not has Vx"},
             "4 7 "},
        Case{"Limit", {"--limit", "3"}, "0 1 2 "},
        Case{"LimitOfWhatTheOthersSelect",
             {"--limit", "2", "--every", "2", "--type", "PVT*,4075"},
             "0 3 "},
        Case{"LimitBeyondTheEnd", {"--limit", "18446744073709551615"}, "0 1 2 3 4 5 6 7 "},
        Case{"Number", {"--where", "NrSV>=11"}, "0 "},
        Case{"NotAvailableComparesToNothing", {"--where", "NrSV != 11"}, "7 "},
        Case{"NaNComparesToNothing", {"--where", "Height < 0 or Height >= 0"}, "0 7 "},
        Case{"Has", {"--where", "has NrSV and has Height"}, "0 7 "},
        Case{"HasOptional", {"--where", "has Latency"}, "0 "},
        Case{"NotHas", {"--where", "not has NrSV"}, "1 2 3 4 5 6 "},
        Case{"Scaled", {"--where", "PVTGeodetic2.Latency == 0.0123"}, "0 "},
        Case{"ScaledTime", {"--where", "TOW == 604799.999"}, "1 "},
        Case{"FloatAsShown", {"--where", "Vn == 0.1"}, "0 "},
        Case{"Negative", {"--where", "Vn <= -3e0"}, "1 "},
        Case{"Hexadecimal", {"--where", "RTCM3Message == 0xd3"}, "5 "},
        Case{"LargeUnsigned", {"--where", "UpTime > 3999999999"}, "6 "},
        Case{"Name", {"--where", "PVTMode == 'RTK fixed'"}, "0 "},
        Case{"OtherName", {"--where", "PVTMode != \"RTK fixed\""}, "1 7 "},
        Case{"NameOfBits", {"--where", "RAIMState == 'Passed'"}, "0 "},
        Case{"Text", {"--where", "ASCIIString == 'café'"}, "4 "},
        Case{"TextWithoutItsFilling", {"--where", "SensorModel == 'X1'"}, "4 "},
        Case{"AnySubBlock", {"--where", "MeasEpoch2.Type1.SVID == 'R01'"}, "2 "},
        Case{"SubBlockAtAnyDepth", {"--where", "SVID == 'G03' and CN0_dBHz == 25"}, "2 "},
        Case{"OnlyThatDepth", {"--where", "Type1.CN0 == 15"}, ""},
        Case{"BlankInName", {"--where", "FrontEnd_Code == 'GPSL2'"}, "6 "},
        Case{"NotAvailableInSubBlock", {"--where", "Gain < 0 and not Gain < -7"}, "6 "},
        Case{"NoSubBlock", {"--where", "not has Type1"}, "0 1 3 4 5 6 7 "},
        Case{"AndBeforeOr", {"--where", "NrSV == 0 or NrSV == 11 and Vn > 1"}, "7 "},
        Case{"Parentheses", {"--where", "(NrSV == 0 or NrSV == 11) and not (Vn > 1)"}, "0 7 "},
        Case{"Not", {"--where", "not not NrSV > 5 and not Vn > 1"}, "0 "},
        Case{"Like", {"--where", "SVID like 'r0?'"}, "2 "},
        Case{"LikeText", {"--where", "ASCIIString like 'C?F?' or SensorModel like 'X*1'"}, "4 "},
        Case{"NotLike", {"--where", "not PVTMode like 'RTK*' and has PVTMode"}, "1 7 "},
        Case{"SameElement", {"--where", "any(Type1: SVID == 'G03' and CN0 == 30)"}, "2 "},
        Case{"OtherElement", {"--where", "any(Type1: SVID == 'R01' and CN0 == 30)"}, ""},
        Case{"NotInTheElement",
             {"--where", "any(MeasEpoch2.Type1: SVID == 'R01' and not has CN0)"},
             "2 "},
        Case{"NoSuchElement", {"--where", "not any(Type1: has SVID)"}, "0 1 3 4 5 6 7 "},
        Case{"ElementInElement",
             {"--where", "any(Type1: SVID == 'G03' and any(Type2: CN0 == 15)) and TOW == 0"},
             "2 "},
        Case{"ElementInOtherElement",
             {"--where", "any(Type1: SVID == 'R01' and any(Type2: CN0 == 15))"},
             ""},
        Case{"ElementsOfBothTypes",
             {"--where", "any(Type1: CN0 == 30) or any(AGCState: Gain == -7)"},
             "2 6 "},
        Case{"OnlySelectedTypes", {"--type", "4075", "--where", "TOW <= 1"}, "4 "}),
    nameOf);

TEST_P(BadSelection, IsExplained)
{
    const ToolRun run = runTool(QStringList{"cut", "-"} + GetParam().arguments, allBlocks());
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.words, std::string("tqx: ") + GetParam().expected + "\n");
}

INSTANTIATE_TEST_SUITE_P(
    Tool, BadSelection,
    testing::Values(
        Case{"Pattern", {"--type", "PVX*"}, "no block has a name like PVX*"},
        Case{"EveryZero",
             {"--every", "0"},
             "cut: --every: '0' is not in the range 1 to 4294967295 (see tqx help cut)"},
        Case{"IntervalBelowMilliseconds",
             {"--interval", "0.0015"},
             "--interval: '0.0015' is not a whole number of milliseconds up to a week"},
        Case{"IntervalZero",
             {"--interval", "0"},
             "cut: --interval: '0' is not in the range 0.001 to 604800 (see tqx help cut)"},
        Case{"LimitZero",
             {"--limit", "0"},
             "cut: --limit: '0' is not in the range 1 to 18446744073709551615 (see tqx help cut)"},
        Case{"NoScale",
             {"--from", "2026-01-04T00:00:01"},
             "--from: '2026-01-04T00:00:01' does not say on which scale; put Z after it for UTC, "
             "' GPS' for GPS time"},
        Case{"NoLeapSecond",
             {"--to", "2016-06-30T23:59:60Z"},
             "--to: '2016-06-30T23:59:60Z' has a second 60, but there was no leap second"},
        Case{"Backwards",
             {"--from", "2400:1", "--to", "2400:1"},
             "--to 2400:1 is not after --from 2400:1"},
        Case{"UnknownField",
             {"--where", "Height > 0 and PVTGeodetic2.NrSW >= 8"},
             "--where: there is no field of PVTGeodetic2 named NrSW, did you mean NrSV?\n"
             "  Height > 0 and PVTGeodetic2.NrSW >= 8\n"
             "                              ^"},
        Case{"UnknownBlock",
             {"--where", "PVTGeodetik2.NrSV >= 8"},
             "--where: there is no block or field named PVTGeodetik2, did you mean PVTGeodetic2?\n"
             "  PVTGeodetik2.NrSV >= 8\n"
             "  ^"},
        Case{"UnknownSubField",
             {"--where", "Type1.SVD == 1"},
             "--where: there is no field named SVD, did you mean SVID?\n"
             "  Type1.SVD == 1\n"
             "        ^"},
        Case{"BlockAlone",
             {"--where", "ASCIIIn > 1"},
             "--where: ASCIIIn is a block; name a field of it, as ASCIIIn.TOW\n"
             "  ASCIIIn > 1\n"
             "  ^"},
        Case{"Empty", {"--where", ""}, "cut: --where: it is empty (see tqx help cut)"},
        Case{"EmptyTime", {"--from", ""}, "cut: --from: it is empty (see tqx help cut)"},
        Case{"UnselectedType",
             {"--type", "4014", "--where", "NrSV > 1"},
             "--where: no selected block has this field\n"
             "  NrSV > 1\n"
             "  ^"},
        Case{"UnknownName",
             {"--where", "'é' == PVTMode"},
             "--where: expected the name of a field here\n"
             "  'é' == PVTMode\n"
             "  ^"},
        Case{"UnknownValueName",
             {"--where", "ASCIIString == 'é' or PVTMode == 'RTK fxed'"},
             "--where: PVTMode has no value named 'RTK fxed', did you mean 'RTK fixed'?\n"
             "  ASCIIString == 'é' or PVTMode == 'RTK fxed'\n"
             "                                   ^"},
        Case{"OrderOfNames",
             {"--where", "PVTMode > 'PPP'"},
             "--where: PVTMode can be compared with a name or text by ==, != and like only\n"
             "  PVTMode > 'PPP'\n"
             "            ^"},
        Case{"NameForNumber",
             {"--where", "NrSV == 'x'"},
             "--where: NrSV has no names for its values; compare it with a number\n"
             "  NrSV == 'x'\n"
             "          ^"},
        Case{"NumberForText",
             {"--where", "ASCIIString == 5"},
             "--where: ASCIIString is a text; compare it with one in quotes\n"
             "  ASCIIString == 5\n"
             "                 ^"},
        Case{"SubBlock",
             {"--where", "Type1 == 5"},
             "--where: Type1 holds sub-blocks; compare a field inside, or test for it with has\n"
             "  Type1 == 5\n"
             "           ^"},
        Case{"Assignment",
             {"--where", "NrSV = 8"},
             "--where: equality is written ==, the others are != < <= > >= like\n"
             "  NrSV = 8\n"
             "       ^"},
        Case{"LikeWithoutQuotes",
             {"--where", "NrSV like 8"},
             "--where: a pattern in quotes is expected here, such as 'G*'\n"
             "  NrSV like 8\n"
             "            ^"},
        Case{"LikeNoName",
             {"--where", "PVTMode like 'XY*'"},
             "--where: PVTMode has no value with a name like 'XY*'\n"
             "  PVTMode like 'XY*'\n"
             "               ^"},
        Case{"AnyUnknownField",
             {"--where", "any(Type1: SVID == 'G03' and SVD == 1)"},
             "--where: there is no field of Type1 named SVD, did you mean SVID?\n"
             "  any(Type1: SVID == 'G03' and SVD == 1)\n"
             "                               ^"},
        Case{"AnyOfNoSubBlocks",
             {"--where", "any(PVTMode: SVID == 'G03')"},
             "--where: PVTMode holds no sub-blocks, which any requires\n"
             "  any(PVTMode: SVID == 'G03')\n"
             "      ^"},
        Case{"AnyUnselectedType",
             {"--type", "4007", "--where", "any(Type1: CN0 == 1)"},
             "--where: no selected block has this field\n"
             "  any(Type1: CN0 == 1)\n"
             "             ^"},
        Case{"AnyWithoutColon",
             {"--where", "any(Type1 CN0 == 1)"},
             "--where: expected a colon here, then a condition on the same element\n"
             "  any(Type1 CN0 == 1)\n"
             "            ^"},
        Case{"NoQuotes",
             {"--where", "NrSV == eight"},
             "--where: names and texts need quotes\n"
             "  NrSV == eight\n"
             "          ^"},
        Case{"OpenQuote",
             {"--where", "PVTMode == 'PPP"},
             "--where: this quote is not closed\n"
             "  PVTMode == 'PPP\n"
             "             ^"},
        Case{"OpenParenthesis",
             {"--where", "(NrSV > 5\t"},
             "--where: expected a closing parenthesis here\n"
             "  (NrSV > 5 \n"
             "            ^"},
        Case{"TwoTerms",
             {"--where", "NrSV > 5 NrSV < 9"},
             "--where: expected and, or, or the end here\n"
             "  NrSV > 5 NrSV < 9\n"
             "           ^"}),
    nameOf);

// Neither the damage after the last block that is wanted is met, nor the next input.
TEST(Selection, LimitLeavesTheRestUnread)
{
    const std::string input = allBlocks() + "junk";
    const std::vector<QStringList> commands = {{"cut"},
                                               {"info", "--strict"},
                                               {"dump"},
                                               {"dump", "--format", "csv", "--type", "4007"},
                                               {"extract", "--mode", "rtcm3"}};
    for (const QStringList& command : commands) {
        const QString count = command.contains("csv") ? "3" : command.contains("rtcm3") ? "1" : "8";
        const ToolRun all = runTool(command + QStringList{"-"}, allBlocks());
        const ToolRun run =
            runTool(command + QStringList{"--limit", count, "-", "no/such/file"}, input);
        EXPECT_EQ(run.status, 0) << command.join(' ').toStdString();
        EXPECT_EQ(run.words, "");
        if (command.front() != "info") {
            EXPECT_EQ(run.output, all.output);
        }
    }
}

class BadTime : public testing::TestWithParam<const char*>
{
};

TEST_P(BadTime, IsNoTime)
{
    const ToolRun run = runTool({"cut", "--from", GetParam(), "-"});
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.words.find(std::string("--from: '") + GetParam() + "' is not a time; write"),
              std::string::npos)
        << run.words;
}

INSTANTIATE_TEST_SUITE_P(Tool, BadTime,
                         testing::Values("2400", "2400:", "2400:604800", "65535:0", "2400:1.",
                                         "2400:1.0001", "2400:1Z", "1980-01-05Z", "2025-02-29Z",
                                         "2026-13-01Z", "2026-1-01Z", "2026-01-01T24:00Z",
                                         "2026-01-01T1:00Z", "2026-01-01T10:60Z",
                                         "2026-01-01T10:00:61Z", "2026-01-01T10:00:60Z",
                                         "2026-01-01T10:00:00+01:00", "2026-01-01T10:00 TAI"));
