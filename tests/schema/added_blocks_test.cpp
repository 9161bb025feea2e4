#include "Station.h"

#include "TQX_codec.h"
#include "tqx/log/inspect/Inspection.h"
#include "tqx/log/select/Condition.h"
#include "tqx/log/table/TableBuilder.h"

#include <gtest/gtest.h>

#include <utility>

using namespace tqx;
using namespace tqx::testing;
using namespace Kor::MessageApi;

TEST(AddedBlocks, comeBackFromStoredValues)
{
    for (const std::string& line : stationLines) {
        const std::vector<uint8_t> bytes = encoded(station(), line);
        const std::string stored = storedLine(station(), bytes);
        ASSERT_NE(stored, "") << line;
        EXPECT_EQ(stored.find("\"bytes\""), std::string::npos) << stored;
        EXPECT_EQ(encoded(station(), stored), bytes) << stored;
    }
}

TEST(AddedBlocks, haveScaledNamedAndDerivedValues)
{
    struct Row {
        size_t line;
        std::vector<std::string> fields;
        const char* expected;
    };
    const Row rows[] = {
        {0,
         {"Temperature", "Rain", "Trend", "Sky", "Wind", "Gust"},
         R"({"Temperature":-12.34,"Rain":"Yes","Trend":-1,"Sky":"fog","Wind":5})"},
        // Derived from what is not available; a field of this revision, and none of the next.
        {1,
         {"Temperature", "Sky", "Wind", "Gust", "Humidity"},
         R"({"Temperature":null,"Sky":null,"Wind":null,"Gust":7.5})"},
        {2, {"Gust", "Humidity"}, R"({"Gust":0.5,"Humidity":55})"},
        {3, {"N", "Masts"}, R"({"N":0,"Masts":[]})"},
        // One of two contents, derived from the parent's derived value, a field of the revision.
        {4,
         {"Masts.Heat", "Masts.Force", "Masts.Distance", "Range", "Quality"},
         R"({"Masts":[{"Heat":{"Celsius":-10.5},"Distance":4294967.301,)"
         R"("Readings":[{"Range":4294902.765,"Quality":7},{"Range":4294967.304,"Quality":null}]},)"
         R"({"Force":{"Newton":-3},"Distance":0,"Readings":[]},)"
         R"({"Distance":0,"Readings":[{"Range":2,"Quality":0}]}]})"},
        {5, {"Size", "Pixels", "Caption"}, R"({"Size":4,"Pixels":[1,2,3,4],"Caption":"fog"})"},
    };
    for (const Row& row : rows) {
        const std::vector<uint8_t> bytes = encoded(station(), stationLines[row.line]);
        EXPECT_EQ(scaledLine(station(), bytes, row.fields), row.expected);
    }
}

TEST(AddedBlocks, mayHaveRecordsLargerThanThoseOfBuiltTypes)
{
    const TQX_TypeLayout& type = *station().findType("StationImage");
    std::string line = R"({"block":"StationImage","fields":{"Pixels":[7)";
    for (int i = 1; i < 60000; ++i)
        line += ",7";
    const std::vector<uint8_t> bytes = encoded(station(), line + R"(],"Caption":"all"}})");
    ASSERT_EQ(bytes.size(), 14U + 2 + 60000 + 12);
    ASSERT_GT(type.recordSize, sizeof(TQX_AnyRecord_u));
    // From the memory for the largest built record to that for a larger one and back.
    TQX_OwnedRecord record;
    TQX_OwnedRecord moved;
    ASSERT_GT(record.decode(type, nullptr, bytes.data(), static_cast<uint16_t>(bytes.size())), 0);
    moved = std::move(record);
    EXPECT_EQ(moved.layout(), &type);
    EXPECT_EQ(moved.as<TQX_MeasEpoch2_s>(), nullptr);
    EXPECT_EQ(TQX_unsignedValue(type.fields[type.fieldCount - 2], moved.get(), 59999), 7U);
    moved.init(*TQX_layout(TQX_recordTypeOf<TQX_MeasEpoch2_s>));
    EXPECT_NE(moved.as<TQX_MeasEpoch2_s>(), nullptr);
    // The description has no type that is larger than it may be.
    EXPECT_THROW(schemaOf("- block: Big\n  number: 7100\n  timestamp: R\n  fields:\n"
                          "    - {name: N, type: u16}\n"
                          "    - {name: A, type: f64, bytes: N, capacity: 8000}\n"
                          "    - {name: Subs, blocks: BigSub, count: N}\n"
                          "- sub: BigSub\n  fields:\n    - {name: M, type: u16}\n"
                          "    - {name: B, type: f64, bytes: M, capacity: 8000}\n"),
                 std::exception);
}

TEST(AddedBlocks, areChosenByConditions)
{
    const TypeSelection all({}, {}, station());
    const std::pair<const char*, std::vector<bool>> rows[] = {
        {"Wind > 4", {true, false, false, false, false, false}},
        {"WeatherReport.Sky == \"fog\"", {true, false, false, false, false, false}},
        {"has Humidity", {false, false, true, false, false, false}},
        {"any(Masts: Kind == 1 and Readings.Quality == 7)",
         {false, false, false, false, true, false}},
        {"Caption like \"f*\"", {false, false, false, false, false, true}},
    };
    for (const auto& [text, expected] : rows) {
        const Condition condition(text, all);
        for (size_t i = 0; i < stationLines.size(); ++i) {
            const std::vector<uint8_t> bytes = encoded(station(), stationLines[i]);
            RecordDecoder decoder(station());
            ASSERT_GT(decoder.decode(blockOf(bytes)), 0);
            EXPECT_EQ(condition.accepts(decoder.getRecord()), expected[i]) << text << ' ' << i;
        }
    }
}

TEST(AddedBlocks, becomeRowsOfTables)
{
    TableOptions options;
    options.fields = FieldFilter({}, station());
    options.rows = "Masts";
    const auto table =
        std::make_shared<const TableSchema>(*station().findType("StationMasts"), options);
    TableBuilder builder(table, nullptr);
    const std::vector<uint8_t> bytes = encoded(station(), stationLines[4]);
    const TableBlock block = {bytes.data(), static_cast<uint16_t>(bytes.size()), 0, 0, "a.tqx"};
    EXPECT_EQ(builder.append(&block, 1), 1U);
    EXPECT_EQ(builder.getRows(), 3U);
    const std::vector<std::string> names = table->getNames();
    for (const char* name : {"Index", "Distance", "Heat", "Readings"})
        EXPECT_NE(std::find(names.begin(), names.end(), name), names.end()) << name;
}

TEST(AddedBlocks, areExplained)
{
    const std::vector<uint8_t> bytes = encoded(station(), stationLines[4]);
    const Inspection inspection = inspect(blockOf(bytes), station());
    EXPECT_EQ(inspection.type, station().findType("StationMasts"));
    EXPECT_EQ(inspection.code, 0);
    std::string paths;
    for (const InspectionRow& row : inspection.rows) {
        if (row.path == "Masts[0].Readings[0].Range") {
            EXPECT_EQ(row.scaled, "4294902.765");
        }
        paths += row.path + ' ';
    }
    EXPECT_NE(paths.find(" Masts[0].Heat.Celsius "), std::string::npos) << paths;
    EXPECT_NE(paths.find(" Masts[0].Readings[0].Range "), std::string::npos) << paths;
}
