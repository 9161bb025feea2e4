#include "Station.h"

#include "tqx/log/stream/Block.h"

#include <gtest/gtest.h>

using namespace tqx;
using namespace tqx::testing;

namespace
{

/// Two firms that chose the same block number.
const char* const first = R"(
- block: Pump
  number: 7050
  timestamp: R
  fields:
    - {name: Flow, type: u16, unit: percent, none: 65535}
    - {name: N, type: u8}
    - {name: Valves, blocks: Valve, count: N}
- sub: Valve
  fields:
    - {name: Open, type: u8, symbols: no_yes}
)";

const char* const second = R"(
- block: Door
  number: 7050
  timestamp: E
  fields:
    - {name: Angle, type: f32, unit: degree}
)";

} // namespace

TEST(TwoSchemas, knowNothingOfEachOther)
{
    const Schema pumps = schemaOf(first);
    const Schema doors = schemaOf(second);
    const std::vector<uint8_t> pump =
        encoded(pumps, R"({"block":"Pump","fields":{"Flow":40,"Valves":[{"Open":1},{"Open":0}]}})");
    const std::vector<uint8_t> door = encoded(doors, R"({"block":"Door","fields":{"Angle":12.5}})");

    EXPECT_EQ(pumps.findType("Door"), nullptr);
    EXPECT_EQ(doors.findType("Valve"), nullptr);
    EXPECT_EQ(pumps.findType("Pump")->recordType, doors.findType("Door")->recordType);
    EXPECT_EQ(describeBlock(7050, pumps), "Pump (7050)");
    EXPECT_EQ(describeBlock(7050, doors), "Door (7050)");
    EXPECT_EQ(describeBlock(7050), "block 7050");

    // In turns, with records of both alive.
    RecordDecoder ofPumps(pumps);
    RecordDecoder ofDoors(doors);
    RecordDecoder ofNeither;
    for (int i = 0; i < 3; ++i) {
        EXPECT_GT(ofPumps.decode(blockOf(pump)), 0);
        EXPECT_GT(ofDoors.decode(blockOf(door)), 0);
        EXPECT_EQ(ofNeither.decode(blockOf(pump)), unknownNumber);
        EXPECT_EQ(scaledLine(pumps, pump, {"Flow", "Valves"}),
                  R"({"Flow":40,"Valves":[{"Open":"Yes"},{"Open":"No"}]})");
        EXPECT_EQ(scaledLine(doors, door, {"Angle"}), R"({"Angle":12.5})");
    }

    // Codes are those of the schema.
    const std::vector<uint8_t> cut(door.begin(), door.begin() + 15);
    const int32_t code = ofDoors.decode(blockOf(cut));
    EXPECT_LE(code, Kor::MessageApi::TQX_firstDescribedCode);
    EXPECT_STREQ(doors.getErrorName(code), "TQX_ERR_DOOR_ANGLE_EXT_BUFFER_OVERFLOW");
    EXPECT_STREQ(Schema().getErrorName(code), "???");
}

TEST(TwoSchemas, liveAsLongAsACopy)
{
    RecordDecoder decoder;
    std::vector<uint8_t> pump;
    {
        const Schema pumps = schemaOf(first);
        pump = encoded(pumps, R"({"block":"Pump","fields":{"Flow":40,"Valves":[{},{}]}})");
        decoder = RecordDecoder(pumps);
    }
    EXPECT_GT(decoder.decode(blockOf(pump)), 0);
    EXPECT_GT(decoder.decode(blockOf(pump)), 0);
}
