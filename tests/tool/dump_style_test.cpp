#include "Tool.h"

#include "TQX_FieldFacts.h"
#include "TQX_Layout.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>

// How dump shows values: units, angles, times.

namespace
{

struct Case {
    const char* name;
    QStringList arguments;
    const char* shown; ///< a part of the output
};

void PrintTo(const Case& value, std::ostream* stream)
{
    *stream << value.name;
}

class DumpStyle : public testing::TestWithParam<Case>
{
};

/// A position and an epoch of measurements; the position after it has nothing available.
const std::string& stream()
{
    static const std::string bytes =
        runTool({"encode", "tool/data/documented.jsonl"}).output +
        runTool(
            {"encode", "-"},
            R"({"block":"PVTGeodetic2","fields":{"TOW":216001000,"WNc":2400,"Latitude":-2e10,"Height":-2e10}})")
            .output;
    return bytes;
}

} // namespace

TEST_P(DumpStyle, ShowsValues)
{
    const Case& expected = GetParam();
    const ToolRun run = runTool(QStringList{"dump", "-"} + expected.arguments, stream());
    EXPECT_EQ(run.words, "");
    EXPECT_NE(run.output.find(expected.shown), std::string::npos) << run.output.substr(0, 2000);
}

INSTANTIATE_TEST_SUITE_P(
    Tool, DumpStyle,
    testing::Values(
        Case{"Words", {"--units", "words"}, " 0.012 meterpersecond\n"},
        Case{"Symbols", {"--units", "symbols"}, " 0.012 m/s\n"},
        Case{"SymbolsOfSubBlocks", {"--units", "SYMBOLS"}, " 36.75 dB-Hz\n"},
        Case{"SymbolsOfColumns",
             {"--units", "symbols", "--format", "csv", "--type", "4007"},
             "MessageIndex,WNc [wk],TOW [s],UTC,"},
        Case{"SymbolsOfFields",
             {"--units", "symbols", "--format", "csv", "--type", "4007"},
             ",Latitude [rad],"},
        Case{"NoUnitsOfStoredValues",
             {"--units", "symbols", "--raw", "--format", "csv", "--type", "4007"},
             ",Latitude,"},
        Case{"Degrees", {"--degrees"}, "Latitude             47.06999547858 degree\n"},
        Case{"DegreesOfNothing", {"--degrees"}, "Latitude             DoNotUse\n"},
        Case{"DegreeSymbols",
             {"--degrees", "--units", "symbols"},
             "Longitude            15.45000060544 °\n"},
        Case{"DegreesOfLines",
             {"--degrees", "--format", "jsonl"},
             "\"Latitude\":47.069995478576274,"},
        Case{"NoDegreesOfNothing", {"--degrees", "--format", "jsonl"}, "\"Latitude\":null,"},
        Case{"DegreesOfCells",
             {"--degrees", "--format", "csv", "--type", "4007", "--field", "Latitude,Height"},
             ",UTC,Latitude [degree],Height [meter]\n"
             "0,2400,216000,2026-01-06T11:59:42.000Z,47.069995478576274,412.3456\n"
             "1,2400,216001,2026-01-06T11:59:43.000Z,,\n"},
        Case{"ConditionsStayInRadians",
             {"--degrees", "--where", "Latitude < 1"},
             "Latitude             47.06999547858 degree\n"},
        Case{"GpsTime", {}, "  2400:216000.000  2026-01-06T12:00:00.000 GPS  revision"},
        Case{"Utc", {"--utc"}, "  2400:216000.000  2026-01-06T11:59:42.000Z  revision"}),
    [](const auto& instance) { return instance.param.name; });

// Angles in degrees are rounded no coarser than in radians.
TEST(DumpStyles, DegreesLoseNothing)
{
    constexpr double pi = 3.14159265358979323846;
    constexpr double step = 1e-12; // in which radians are shown
    for (int i = 0; i < 50; ++i) {
        const double radians = -1.5 + 0.0612345678901 * i;
        char line[128];
        std::snprintf(line, sizeof line, R"({"block":"PVTGeodetic2","fields":{"Latitude":%.17g}})",
                      radians);
        const std::string block = runTool({"encode", "-"}, line).output;
        const std::string text =
            runTool({"dump", "-", "--degrees", "--field", "Latitude"}, block).output;
        const size_t value = text.find("Latitude") + 8;
        EXPECT_NEAR(std::strtod(text.c_str() + value, nullptr) * pi / 180, radians, step / 2);
    }
}

TEST(DumpStyles, EveryUnitHasASymbol)
{
    using namespace Kor::MessageApi;
    size_t units = 0;
    for (uint32_t type = 1; const TQX_TypeLayout* layout = TQX_layout(type); ++type) {
        for (int row = 0; row < layout->fieldCount; ++row) {
            const std::string_view unit = TQX_unit(TQX_fieldFacts(type)[row]);
            EXPECT_EQ(TQX_unitSymbol(unit).empty(), unit.empty()) << unit;
            units += unit.empty() ? 0 : 1;
        }
    }
    EXPECT_GT(units, 1000U);
    EXPECT_EQ(TQX_unitSymbol("metersquaredpersecondsquared"), "m²/s²");
    EXPECT_EQ(TQX_unitSymbol("parsec"), "");
}

TEST(DumpStyles, RefusesWhatDoesNotGoTogether)
{
    const std::pair<QStringList, const char*> cases[] = {
        {{"--degrees", "--raw"}, "--degrees is for scaled values"},
        {{"--units", "SI"}, "--units"},
        {{"--rows", "TOW > 1"}, "--rows goes with --format csv"},
        {{"--format", "jsonl", "--rows", "TOW > 1"}, "--rows goes with --format csv"}};
    for (const auto& [arguments, words] : cases) {
        const ToolRun run = runTool(QStringList{"dump", "-"} + arguments, stream());
        EXPECT_EQ(run.status, 1);
        EXPECT_NE(run.words.find(words), std::string::npos) << run.words;
        EXPECT_EQ(run.output, "");
    }
}

TEST(UnitSymbols, AreShownByOtherCommands)
{
    EXPECT_NE(runTool({"types", "4007", "--units", "symbols"}).output.find("m/s"),
              std::string::npos);
    EXPECT_NE(runTool({"explain", "-@0", "--units", "symbols"}, stream()).output.find("0.012 m/s"),
              std::string::npos);
}
