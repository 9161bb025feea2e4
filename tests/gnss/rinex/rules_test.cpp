// The rules find what converters are blamed for.

#include "RinexRules.h"
#include "ToolRuns.h"

#include <gtest/gtest.h>

#include <ostream>
#include <regex>

namespace
{

struct Case {
    const char* name;
    const char* from; ///< a pattern, of which the first place is replaced
    const char* to;
    const char* fault; ///< part of what is found
};

void PrintTo(const Case& value, std::ostream* stream)
{
    *stream << value.name;
}

class RulesTest : public testing::TestWithParam<Case>
{
};

} // namespace

TEST_P(RulesTest, FindWhatIsPlanted)
{
    const ToolRuns tool;
    tool.expectRun("simulate --duration 3 -o log.tqx");
    tool.expectRun("rinex -q log.tqx -o files");
    const std::string text = tool.readOnly("files", "_MO.rnx");
    ASSERT_TRUE(rinex::faultsOfObservations(text).empty());
    const std::string broken = std::regex_replace(text, std::regex(GetParam().from), GetParam().to,
                                                  std::regex_constants::format_first_only);
    ASSERT_TRUE(broken != text);
    std::string found;
    for (const std::string& fault : rinex::faultsOfObservations(broken))
        found += fault + "\n";
    EXPECT_NE(found.find(GetParam().fault), std::string::npos) << found;
}

INSTANTIATE_TEST_SUITE_P(
    Faults, RulesTest,
    testing::Values(
        Case{"CountOfSatellites", "(\n> .{30}) ?[0-9]+ ", "$1 9 ", "no epoch line"},
        Case{"LabelCutOff", "SIGNAL STRENGTH UNIT", "SIGNAL STRENGTH UNI ", "unknown label"},
        Case{"MissingRecord", "\n.*RCV CLOCK.*|\n.*ANT # / TYPE *", "", "missing"},
        Case{"NoSlots", "\n.*GLONASS SLOT.*\n.*GLONASS SLOT.*", "", "GLONASS SLOT"},
        Case{"NoBiases", "\n.*COD/PHS/BIS.*", "", "COD/PHS/BIS"},
        Case{"NoPhaseShift", "\nG L2L.*", "", "no phase shift of L2L"},
        Case{"ColumnOfPosition", "\n(.*) APPROX", "\n $1APPROX", "APPROX POSITION XYZ"},
        Case{"TimeOfFirst", "0[.]0000000     GPS         TIME OF F",
             "5.0000000     GPS         TIME OF F", "wrong TIME OF FIRST OBS"},
        Case{"CountOfObservations", "(   G03)     3", "$1     4", "wrong PRN / # OF OBS of G03"},
        Case{"NumberOfSatellites", "35 (.*# OF SAT)", "34 $1", "wrong # OF SATELLITES"},
        Case{"Digits", "\nG03  ([0-9]+)[.]([0-9]{3})", "\nG03  $1$2.", "no observation"},
        Case{"SecondTwice", "  1[.]0000000  0", "  0.0000000  0", "out of order"},
        Case{"UnknownType", " C2L ", " C2B ", "no such type C2B"},
        Case{"SatelliteTwice", "\nG04", "\nG03", "a satellite twice"}),
    [](const auto& instance) { return instance.param.name; });
