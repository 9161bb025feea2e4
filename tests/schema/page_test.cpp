#include "tqx/log/read/LineEncoder.h"
#include "tqx/log/record/FieldFilter.h"
#include "tqx/log/record/RecordDecoder.h"
#include "tqx/log/schema/Schema.h"
#include "tqx/log/select/TypeSelection.h"

#include <gtest/gtest.h>

#include <fstream>

// The lines of C++ that doc/adding-blocks.md shows; scripts/check-readme compares them.
TEST(Page, showsHowSchemasAreHandedOver)
{
    std::ofstream("weather.yaml") << "- block: WeatherReport\n  number: 7001\n  timestamp: R\n"
                                     "  fields:\n    - {name: Sky, type: u8}\n";
    const tqx::Schema schema = tqx::Schema::read({"weather.yaml"});
    tqx::RecordDecoder decoder(schema);
    // RawJson, ValueJson, Paragraph, FlatCsv and SqliteWriter take it from the filter,
    const tqx::FieldFilter all({}, schema);
    // Condition and RowCondition from the selection.
    const tqx::TypeSelection types({"Weather*"}, {}, schema);
    tqx::LineEncoder encoder(schema);

    const std::vector<uint8_t> bytes = encoder.encode(R"({"block":"WeatherReport"})");
    EXPECT_TRUE(types.accepts(7001));
    EXPECT_FALSE(types.accepts(4007));
    EXPECT_TRUE(all.getSchema().hasAddedTypes());
    EXPECT_GT(decoder.decode({bytes.data(), static_cast<uint16_t>(bytes.size()), 0}), 0);
}
