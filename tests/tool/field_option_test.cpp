#include "Tool.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

// Which fields --field names, and in which order they are shown.

using nlohmann::ordered_json;

namespace
{

struct Case {
    const char* name;
    const char* fields;
    const char* type;
    const char* shown; ///< of the only message: paths in their order
};

void PrintTo(const Case& value, std::ostream* stream)
{
    *stream << value.name;
}

class FieldOption : public testing::TestWithParam<Case>
{
};

const std::string& documentedStream()
{
    static const std::string stream = runTool({"encode", "tool/data/documented.jsonl"}).output;
    return stream;
}

/// Paths of the members, of arrays those of the first element.
std::string pathsOf(const ordered_json& fields, const std::string& prefix = "")
{
    std::string paths;
    for (const auto& [name, value] : fields.items()) {
        const bool isArray = value.is_array() && !value.empty() && value[0].is_object();
        paths += value.is_object() ? pathsOf(value, prefix + name + '.')
                 : isArray         ? pathsOf(value[0], prefix + name + '.')
                                   : prefix + name + ' ';
    }
    return paths;
}

} // namespace

TEST_P(FieldOption, NamesFieldsInTheirOrder)
{
    const Case& expected = GetParam();
    for (const QStringList& more : {QStringList(), QStringList{"--raw"}}) {
        const ToolRun run = runTool(QStringList{"dump", "--format", "jsonl", "--field",
                                                expected.fields, "--type", expected.type, "-"} +
                                        more,
                                    documentedStream());
        EXPECT_EQ(run.words, "");
        EXPECT_EQ(run.output.empty() ? "" : pathsOf(ordered_json::parse(run.output)["fields"]),
                  expected.shown);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Tool, FieldOption,
    testing::Values(
        Case{"OrderGiven", "Height,Latitude,TOW,Mode", "PVTGeodetic2", "Height Latitude TOW Mode "},
        Case{"AnyCase", "HEIGHT,latitude,tow,wnc", "PVTGeodetic2", "Height Latitude TOW WNc "},
        Case{"Twice", "Height,NrSV,height", "PVTGeodetic2", "Height NrSV "},
        Case{"InSubBlocks", "type1.cn0,N1,Type1.SVID", "MeasEpoch2", "Type1.CN0 Type1.SVID N1 "},
        Case{"InnerName", "lockTime,N1", "MeasEpoch2", "Type1.LockTime Type1.Type2.LockTime N1 "},
        Case{"DeepEnd", "Type2.CN0", "MeasEpoch2", "Type1.Type2.CN0 "},
        Case{"OfABlock", "pvtgeodetic2.NrSV,TOW", "PVTGeodetic2", "NrSV TOW "},
        Case{"OfAnotherBlock", "MeasEpoch2.Type1.CN0,WNc", "PVTGeodetic2", "WNc "},
        Case{"OfABlockAlone", "PVTGeodetic2.TOW", "MeasEpoch2", ""},
        Case{"InnerOfABlock", "MeasEpoch2.Type1.SVID,MeasEpoch2.Type2.Type", "MeasEpoch2",
             "Type1.SVID Type1.Type2.Type "}),
    [](const auto& instance) { return instance.param.name; });

// Bit ranges keep their place among other fields, although they share a word.
TEST(FieldOptions, OrderIsThatOfTextAndTables)
{
    const QStringList arguments = {"--field", "Averaging,NrSV,PVTMode,Height", "--type", "4007",
                                   "-"};
    const std::vector<std::string> text =
        linesOf(runTool(QStringList{"dump"} + arguments, documentedStream()).output);
    ASSERT_EQ(text.size(), 6U);
    const char* const names[] = {"Averaging", "NrSV", "PVTMode", "Height"};
    for (size_t i = 0; i < 4; ++i)
        EXPECT_EQ(text[i + 1].find_first_not_of(' '), text[i + 1].find(names[i])) << text[i + 1];
    const std::vector<std::string> table = linesOf(
        runTool(QStringList{"dump", "--format", "csv"} + arguments, documentedStream()).output);
    ASSERT_EQ(table.size(), 2U);
    EXPECT_EQ(table[0],
              "MessageIndex,WNc [week],TOW [second],UTC,Averaging,NrSV,PVTMode,Height [meter]");
    EXPECT_EQ(table[1].substr(table[1].find('Z')), "Z,No,11,RTK fixed,412.3456");
}

TEST(FieldOptions, NamesInConditionsAreFoundWhateverTheCase)
{
    const char* const conditions[] = {"pvtmode == 'rtk FIXED'", "PVTGEODETIC2.NRSV == 11",
                                      "type1.svid == 'g03'"};
    for (const char* condition : conditions) {
        const ToolRun run = runTool({"cut", "--where", condition, "-"}, documentedStream());
        EXPECT_EQ(run.words, "");
        EXPECT_GT(run.output.size(), 0U) << condition;
    }
}
