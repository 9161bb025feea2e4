#include "Database.h"
#include "TemporaryFolder.h"
#include "Tool.h"

#include <gtest/gtest.h>

// Databases of observations and ephemerides have the cells of the same tables as JSON.

using nlohmann::json;

namespace
{

struct Case {
    const char* name;
    QStringList command;
    const char* table;
    std::pair<const char*, const char*> unit; ///< of a column
};

void PrintTo(const Case& value, std::ostream* stream)
{
    *stream << value.name;
}

class GnssDatabase : public testing::TestWithParam<Case>
{
};

} // namespace

TEST_P(GnssDatabase, HoldsTheCellsOfJson)
{
    const TemporaryFolder folder;
    const QString log = folder.fileName("log.tqx").c_str();
    const std::string file = folder.fileName("table.sqlite");
    ASSERT_EQ(runTool({"simulate", "--duration", "12", "--slips", "100", "-o", log}).status, 0);
    const Case& c = GetParam();
    const ToolRun run =
        runTool(c.command + QStringList{"--format", "sqlite", "-o", file.c_str(), log});
    ASSERT_EQ(run.status, 0) << run.words;
    const ToolRun lines = runTool(c.command + QStringList{"--format", "jsonl", log});
    const Database database(file);
    const std::vector<DatabaseRow> rows =
        database.query(std::string("SELECT * FROM ") + c.table + " ORDER BY id");
    const std::vector<std::string> expected = linesOf(lines.output);
    ASSERT_EQ(rows.size(), expected.size());
    ASSERT_FALSE(rows.empty());
    for (size_t i = 0; i < rows.size(); ++i) {
        const json row = json::parse(expected[i]);
        ASSERT_EQ(rows[i].size(), row.size() + 1); // and its id
        for (const auto& [name, value] : row.items()) {
            const json& cell = rows[i].at(name);
            ASSERT_EQ(cell, value.is_boolean() ? json(value.get<bool>() ? 1 : 0) : value) << name;
        }
    }
    EXPECT_EQ(database.texts(std::string("SELECT unit FROM tqx_columns WHERE table_name = '") +
                             c.table + "' AND column_name = '" + c.unit.first + "'"),
              std::vector<std::string>{c.unit.second});
    const ToolRun nowhere = runTool(c.command + QStringList{"--format", "sqlite", log});
    EXPECT_EQ(nowhere.status, 1);
    EXPECT_NE(nowhere.words.find("name it with -o"), std::string::npos) << nowhere.words;
}

INSTANTIATE_TEST_SUITE_P(
    Tool, GnssDatabase,
    testing::Values(
        Case{"Observations", {"observations"}, "observations", {"Phase", "cycle"}},
        Case{"Ephemerides", {"ephemerides"}, "ephemerides", {"SQRT_A", "metersqrt"}},
        Case{
            "Ionosphere", {"ephemerides", "--kind", "ionosphere"}, "ionosphere", {"TOW", "second"}},
        Case{"TimeOffsets", {"ephemerides", "--kind", "time"}, "time_offsets", {"a_0", "second"}}),
    [](const auto& instance) { return instance.param.name; });
