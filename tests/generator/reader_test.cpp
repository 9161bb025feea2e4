#include "GeneratorTesting.h"

#include "model/Selection.h"

#include <gtest/gtest.h>

using namespace korcg::generator;

namespace
{

const Field& fieldOf(const char* type, const char* field)
{
    return *findField(*synthetic().find(type), field);
}

int rowOf(const char* type, const char* field)
{
    const RecordType& record = *synthetic().find(type);
    return static_cast<int>(findField(record, field) - record.fields.data());
}

TEST(Reader, MainBlocksStartWithTheHeaderInFieldListOrder)
{
    const char* const names[] = {"Sync1",    "Sync2",  "CRC", "ID",  "BlockNumber",
                                 "Revision", "Length", "TOW", "WNc", "TOWc"};
    const RecordType& type = *synthetic().find("Growing");
    for (std::size_t row = 0; row < std::size(names); ++row) {
        EXPECT_EQ(names[row], type.fields.at(row).name);
        EXPECT_TRUE(type.fields.at(row).isHeader);
        const bool isTime = type.fields.at(row).name == "TOW" || type.fields.at(row).name == "WNc";
        EXPECT_EQ(isTime ? Role::Data : Role::Structure, type.fields.at(row).role);
        EXPECT_FALSE(type.fields.at(row).isVirtual);
    }
    EXPECT_FALSE(synthetic().find("Note")->fields.front().isHeader);
}

TEST(Reader, NamesBecomeRows)
{
    EXPECT_EQ(rowOf("Grid", "N1"), fieldOf("Grid", "Cells").count);
    EXPECT_EQ(rowOf("Grid", "SB1Length"), fieldOf("Grid", "Cells").length);
    EXPECT_EQ(-1, fieldOf("Grid", "Notes").length);
    EXPECT_TRUE(fieldOf("Cell", "Notes").lengthInMain);
    EXPECT_EQ(rowOf("Grid", "SB2Length"), fieldOf("Cell", "Notes").length);
    EXPECT_EQ(rowOf("Carrier", "Kind"), fieldOf("Carrier", "Long").selector);
    EXPECT_EQ(2, fieldOf("Carrier", "Long").presenceValue);
    EXPECT_EQ(rowOf("Growing", "Second"), fieldOf("Growing", "Double").after);
}

TEST(Reader, SubFieldsFollowTheirWordInBitOrder)
{
    const int word = rowOf("Carrier", "Flags");
    EXPECT_EQ(word + 1, rowOf("Carrier", "Big"));
    EXPECT_EQ(word + 2, rowOf("Carrier", "Kind"));
    EXPECT_EQ(word + 3, rowOf("Carrier", "Offset"));
    const Field& offset = fieldOf("Carrier", "Offset");
    EXPECT_EQ(word, offset.parent);
    EXPECT_EQ(6, offset.shift);
    EXPECT_EQ(10, offset.width);
    EXPECT_EQ(Scalar::I16, offset.type);
    EXPECT_EQ(Scalar::U32, fieldOf("Payload", "Low").type);
}

TEST(Reader, FlagsAndRolesAreDerived)
{
    struct Row {
        const char* type;
        const char* field;
        Role role;
        bool isOptional;
        bool isRepeated;
        bool isVirtual;
    };
    const Row rows[] = {
        {"Grid", "N1", Role::Structure, false, false, false},
        {"Grid", "SB2Length", Role::Structure, false, false, false},
        {"Grid", "Cells", Role::Unset, false, true, false},
        {"Cell", "M", Role::Structure, false, false, false},
        {"Note", "Text", Role::Data, false, true, false},
        {"Carrier", "Long", Role::Unset, true, false, false},
        {"Payload", "Size", Role::Data, false, false, false},
        {"Payload", "Words", Role::Data, true, true, false},
        {"Payload", "Low", Role::Data, true, true, false},
        {"Growing", "Jumps", Role::Data, true, false, false},
        {"Growing", "Reserved1", Role::Reserved, false, false, false},
        {"Growing", "Bit", Role::Data, true, false, false},
        {"Growing", "Double", Role::Data, true, false, true},
        {"Growing", "_padding2", Role::Structure, true, true, false},
    };
    for (const Row& row : rows) {
        const Field& field = fieldOf(row.type, row.field);
        const std::string where = std::string(row.type) + '.' + row.field;
        EXPECT_EQ(row.role, field.role) << where;
        EXPECT_EQ(row.isOptional, field.isOptional) << where;
        EXPECT_EQ(row.isRepeated, field.isRepeated) << where;
        EXPECT_EQ(row.isVirtual, field.isVirtual) << where;
    }
}

TEST(Reader, DoNotUseValuesHaveTheTypeOfTheirField)
{
    EXPECT_EQ(Number(int64_t{-32768}), fieldOf("Note2", "X").doNotUse);
    EXPECT_EQ(Number(uint64_t{255}), fieldOf("Payload", "Size").doNotUse);
    EXPECT_EQ(Number(-2e10), fieldOf("Growing", "Double").doNotUse);
    EXPECT_TRUE(fieldOf("Payload", "Size").doNotUseNamed);
    EXPECT_FALSE(fieldOf("Payload", "Mode").doNotUseNamed) << "the table names the value";
    EXPECT_EQ(3, fieldOf("Growing", "Double").precision);
}

constexpr const char* borrowing = R"(
registration: [A]
fields:
  Height: {type: f64, unit: meter, none: -2e10, text: above the ellipsoid}
  Fine: {at: 1, symbols: no_yes}
groups:
  place: [Height, {name: Region, type: u16}]
---
- block: A
  number: 4000
  record: 1
  timestamp: R
  fields:
    - group: place
    - name: Status
      type: u8
      bits:
        - {name: Coarse, at: 0}
        - Fine
        - {name: Known, at: 7, any: [Coarse, Fine]}
)";

TEST(Reader, FieldsComeFromTheDictionary)
{
    const Format format =
        loadGood({{"base.yaml", readTestFile("base.yaml")}, {"borrowing.yaml", borrowing}});
    const RecordType& type = format.types.at(0);
    const Field& height = *findField(type, "Height");
    EXPECT_EQ(Scalar::F64, height.type);
    EXPECT_EQ("meter", height.unit);
    EXPECT_EQ("above the ellipsoid", height.text);
    EXPECT_EQ(Number(-2e10), height.doNotUse);
    EXPECT_EQ(&height + 1, findField(type, "Region"));
    const Field& known = *findField(type, "Known");
    EXPECT_EQ(Summary::Any, known.summary);
    EXPECT_EQ(3U, known.summed);
    EXPECT_TRUE(known.isVirtual);
}

TEST(Reader, RangesOfNamedValuesCountFromTheirStart)
{
    const std::vector<SymbolicValue>& values = synthetic().symbols.at("colour").values;
    ASSERT_EQ(4u, values.size());
    EXPECT_EQ("red", values[0].name);
    EXPECT_EQ(250, values[1].value);
    EXPECT_EQ("grey 01", values[1].name);
    EXPECT_EQ("grey 03", values[3].name);
}

TEST(Reader, KeepsTheFirstErrorsAndCountsTheRest)
{
    std::string text = "format: TQX\n";
    for (int i = 0; i < 60; ++i)
        text += "word" + std::to_string(i) + ": 1\n";
    Errors errors;
    load({{"many.yaml", text}}, errors);
    const std::vector<std::string> report = errors.report();
    EXPECT_EQ(60u, errors.count());
    ASSERT_EQ(51u, report.size());
    EXPECT_EQ("many.yaml:2: unknown key 'word0' in the format", report.front());
    EXPECT_EQ("10 more errors", report.back());
}

TEST(Selection, BringsTheSubBlocksAlong)
{
    Errors errors;
    std::vector<std::string> names;
    for (const RecordType* type : select(synthetic(), {"Grid", "Short"}, errors))
        names.push_back(type->name);
    EXPECT_EQ(std::vector<std::string>({"Note2", "Short", "Note", "Cell", "Grid"}), names);
    EXPECT_EQ(synthetic().types.size(), select(synthetic(), {}, errors).size());
    EXPECT_TRUE(errors.empty());
    select(synthetic(), {"Gone"}, errors);
    EXPECT_EQ(std::vector<std::string>({"--types: there is no type Gone"}), errors.report());
}

} // namespace
