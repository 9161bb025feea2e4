// An array that is one value is shown whole, with elements that would mean "not available" on their
// own; it is not available when all of them do.

#include "Station.h"

#include "tqx/log/inspect/Inspection.h"
#include "tqx/log/select/Condition.h"
#include "tqx/log/source/MemorySource.h"
#include "tqx/log/write/FlatCsv.h"
#include "tqx/log/write/Paragraph.h"

#include <gtest/gtest.h>

using namespace tqx;
using namespace tqx::testing;

namespace
{

const char* const described = R"(
- block: Links
  number: 7060
  timestamp: R
  fields:
    - {name: Peer, type: u16, count: 3, none: 65535, whole: true}
    - {name: Backup, type: u16, count: 3, none: 65535, whole: true}
    - {name: Delays, type: u16, count: 3, none: 65535}
)";

/// A type with an address, and a block of it in which the first one is there, the second one not.
struct Case {
    const char* name;
    Schema schema;
    const char* line;
    std::vector<std::string> fields; ///< the two
    const char* json;
    const char* text;
    const char* csv;
    const char* condition; ///< that holds for a byte of the first one
};

std::vector<Case> cases()
{
    return {
        {"built",
         Schema(),
         R"({"block":"IPStatus1","fields":{"IPAddress":[10,0,0,7],"Gateway":[0,0,0,0]}})",
         {"IPAddress", "Gateway"},
         R"({"IPAddress":[10,0,0,7],"Gateway":[null,null,null,null]})",
         "    IPAddress  10 0 0 7\n    Gateway    DoNotUse DoNotUse DoNotUse DoNotUse\n",
         ",10;0;0;7,;;;\n",
         "IPAddress == 0"},
        {"described",
         schemaOf(described),
         R"({"block":"Links","fields":{"Peer":[65535,2,3],"Backup":[65535,65535,65535],
             "Delays":[65535,2,3]}})",
         {"Peer", "Backup", "Delays"},
         R"({"Peer":[65535,2,3],"Backup":[null,null,null],"Delays":[null,2,3]})",
         "    Peer    65535 2 3\n    Backup  DoNotUse DoNotUse DoNotUse\n"
         "    Delays  DoNotUse 2 3\n",
         ",65535;2;3,;;,;2;3\n",
         "Peer == 65535"},
    };
}

bool holds(const Case& each, const std::string& condition, const RecordDecoder& decoder)
{
    Condition wanted(condition, TypeSelection({}, {}, each.schema));
    return wanted.accepts(decoder.getDecoded().record);
}

std::string availabilityOf(const Case& each, const std::vector<uint8_t>& block)
{
    MemorySource source(block.data(), block.size());
    const Inspection inspection = inspect(locateBlock(source, 0, each.schema), each.schema);
    std::string text;
    for (const InspectionRow& row : inspection.rows) {
        if (row.field && each.fields[0] == row.field->name)
            text += row.isAvailable ? '1' : '0';
        if (row.field && each.fields[1] == row.field->name)
            text += row.isAvailable ? 'I' : 'O';
    }
    return text;
}

} // namespace

TEST(WholeValues, areShownInFull)
{
    for (const Case& each : cases()) {
        SCOPED_TRACE(each.name);
        const std::vector<uint8_t> block = encoded(each.schema, each.line);
        EXPECT_EQ(scaledLine(each.schema, block, each.fields), each.json);

        RecordDecoder decoder(each.schema);
        ASSERT_GT(decoder.decode(blockOf(block)), 0);
        const FieldFilter filter(each.fields, each.schema);
        Buffer text;
        Paragraph(filter).write(text, blockOf(block), decoder.getDecoded().record);
        EXPECT_NE(text.view().find(each.text), std::string_view::npos) << text.view();
        Buffer row;
        FlatCsv(*each.schema.getBlockType(blockOf(block).getNumber()), filter, {})
            .write(row, decoder.getDecoded().record, 0);
        EXPECT_NE(row.view().find(each.csv), std::string_view::npos) << row.view();

        EXPECT_TRUE(holds(each, each.condition, decoder));
        EXPECT_TRUE(holds(each, "has " + each.fields[0], decoder));
        EXPECT_FALSE(holds(each, "has " + each.fields[1], decoder));

        const std::string expected = each.fields.size() == 2 ? "1111OOOO" : "111OOO";
        EXPECT_EQ(availabilityOf(each, block), expected);
    }
}
