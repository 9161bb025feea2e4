#include "TQX_codec.h"
#include "Tool.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <map>

using nlohmann::json;

// The catalogue as the tool shows it, against the independently kept list of types.
TEST(Types, JsonHoldsTheCatalogueInOrder)
{
    const json census = json::parse(testData("data/census.json"));
    std::map<std::string, json> listed;
    for (const json& type : census["recordTypes"])
        listed[type["name"]] = type;
    const json types = json::parse(runTool({"types", "--json"}).output);
    int lastRegistration = 0;
    for (const json& type : types) {
        const std::string name = type["name"];
        SCOPED_TRACE(name);
        ASSERT_EQ(listed.count(name), 1U);
        const json& expected = listed[name];
        EXPECT_GT(expected["registration"], lastRegistration);
        lastRegistration = expected["registration"];
        EXPECT_EQ(type["kind"], expected.contains("block") ? "main" : "sub");
        EXPECT_EQ(type["recordType"], expected["number"]);
        EXPECT_EQ(type.value("number", json()), expected.value("block", json()));
        EXPECT_EQ(type.value("description", json()), expected.value("text", json()));
        for (const char* key : {"version", "flexrate", "esoc", "timestamp"})
            EXPECT_EQ(type.value(key, json()), expected.value(key, json())) << key;
    }
    EXPECT_GT(lastRegistration, 0);
}

TEST(Types, JsonHoldsTheFieldsInOrder)
{
    size_t compared = 0;
    const json types = json::parse(runTool({"types", "--json"}).output);
    for (const json& type : types) {
        const auto* layout = TQX_layout(type["recordType"].get<uint32_t>());
        ASSERT_NE(layout, nullptr);
        ASSERT_EQ(type["fields"].size(), layout->fieldCount);
        for (int i = 0; i < layout->fieldCount; ++i) {
            const json& field = type["fields"][static_cast<size_t>(i)];
            std::string identifier = layout->fields[i].name;
            EXPECT_EQ(field["name"], identifier);
            for (char& character : identifier)
                character = character == ' ' ? '_' : character;
            EXPECT_EQ(field["class"],
                      std::string("TQX_") + layout->name + "_" + identifier + "_FieldInfo");
            ++compared;
        }
    }
    EXPECT_GT(compared, 0U);
}

TEST(Types, JsonSaysWhatFieldsAreAndWhereTheyAre)
{
    using namespace Kor::MessageApi;
    const json types = json::parse(runTool({"types", "--json"}).output);
    std::map<std::string, size_t> seen;
    for (const json& type : types) {
        const auto* layout = TQX_layout(type["recordType"].get<uint32_t>());
        for (int i = 0; i < layout->fieldCount; ++i) {
            const json& field = type["fields"][static_cast<size_t>(i)];
            const TQX_FieldLayout& row = layout->fields[i];
            const bool isBits = row.kind == TQX_FieldKind::Bits && row.summary == TQX_Summary::None;
            const bool isPlaced =
                row.kind != TQX_FieldKind::Bits && row.kind != TQX_FieldKind::Derived;
            EXPECT_EQ(field.value("description", ""), row.meaning) << row.name;
            EXPECT_EQ(field.value("bit", -1), isBits ? row.shift : -1) << row.name;
            EXPECT_EQ(field.value("offset", -1), isPlaced ? row.wireOffset : -1) << row.name;
            for (const char* key : {"description", "bit", "offset"})
                seen[key] += field.contains(key) ? 1 : 0;
        }
    }
    for (const char* key : {"description", "bit", "offset"})
        EXPECT_GT(seen[key], 500U) << key;
    const json pvt = json::parse(runTool({"types", "--json", "PVTGeodetic2"}).output)[0]["fields"];
    const std::map<std::string, int> offsets = {{"Sync1", 0},     {"TOW", 8},    {"WNc", 12},
                                                {"Mode", 14},     {"Error", 15}, {"Latitude", 16},
                                                {"Longitude", 24}};
    size_t found = 0;
    for (const json& field : pvt) {
        const auto expected = offsets.find(field["name"]);
        if (expected == offsets.end())
            continue;
        EXPECT_EQ(field["offset"], expected->second) << field["name"];
        ++found;
    }
    EXPECT_EQ(found, offsets.size());
}

TEST(Types, LayoutOfEveryTypeIsShown)
{
    for (uint32_t recordType = 1; recordType <= Kor::MessageApi::TQX_lastRecordType; ++recordType) {
        const auto* layout = TQX_layout(recordType);
        if (!layout)
            continue;
        const ToolRun run = runTool({"types", layout->name});
        EXPECT_EQ(run.status, 0) << run.words;
        const std::string head = layout->name + std::string(", ");
        EXPECT_EQ(run.output.substr(0, head.size()), head);
        EXPECT_GE(linesOf(run.output).size(), 3U + layout->fieldCount) << layout->name;
    }
}
