#include "Station.h"

#include "tqx/log/DataError.h"

#include <gtest/gtest.h>

using namespace tqx;
using namespace tqx::testing;

namespace
{

std::string blockWith(const std::string& fields)
{
    return "- block: Pump\n  number: 7050\n  timestamp: R\n  fields:\n" + fields;
}

} // namespace

TEST(DescriptionErrors, nameFileAndLine)
{
    const std::pair<std::string, const char*> rows[] = {
        {"- block: Mine\n  number: 4007\n  timestamp: R\n  fields:\n    - {name: A, type: u8}\n",
         "more.yaml:1: block number 4007 of Mine is that of PVTGeodetic2"},
        {"- block: measepoch2\n  number: 7050\n  timestamp: R\n  fields:\n"
         "    - {name: A, type: u8}\n",
         "more.yaml:1: the name measepoch2 is that of a type of the format: MeasEpoch2"},
        {blockWith("    - {name: A, type: u8, unit: cubit}\n"),
         "more.yaml:5: Pump.A has the unknown unit 'cubit'"},
        {blockWith("    - {name: A, type: u8, symbols: colours}\n"),
         "more.yaml:5: Pump.A uses the unknown symbol table 'colours'"},
        {blockWith("    - {name: A, type: u8}\n"
                   "    - {name: B, derived: cubeRoot, from: [A], type: f64}\n"),
         "more.yaml:6: Pump.B: there is no formula 'cubeRoot'"},
        {blockWith("    - {name: A, type: u8}\n"
                   "    - {name: B, derived: length2, from: [A], type: f64}\n"),
         "more.yaml:6: Pump.B: formula length2 takes 2 inputs, not 1"},
        {blockWith("    - {name: A, type: u8, count: 4}\n"
                   "    - {name: B, derived: standardDeviation, from: [A], type: f64}\n"),
         "more.yaml:6: Pump.B is computed from A, which is not a single number"},
        {"- block: Pump\n  record: 400\n  number: 7050\n  timestamp: R\n  fields:\n"
         "    - {name: A, type: u8}\n",
         "more.yaml:2: 'record' of a block is for types of the format itself"},
        {blockWith("    - {name: A, type: u8, edition: 2}\n"),
         "more.yaml:5: 'edition' is for fields of the format itself"},
        {"units: [furlong: fur]\n",
         "more.yaml:1: 'units' of the format is only for the description of a whole format"},
        {blockWith("    - {name: Valves, embeds: PumpValve}\n"),
         "more.yaml:5: Pump.Valves holds PumpValve, which does not exist"},
        {blockWith("    - {name: N, type: u8}\n    - {name: Vs, blocks: V, count: N}\n") +
             "- sub: V\n  fields:\n    - {name: A, type: u8, since: 1}\n",
         "more.yaml:6: Pump.Vs: an entry of V may take no byte at all"},
        {"- block: [\n", "more.yaml:2: end of sequence flow not found"},
    };
    for (const auto& [text, expected] : rows) {
        try {
            schemaOf(text);
            ADD_FAILURE() << "no error in\n" << text;
        } catch (const DataError& error) {
            EXPECT_STREQ(error.what(), expected) << text;
        }
    }
}

TEST(DescriptionErrors, nameFilesThatCannotBeRead)
{
    EXPECT_THROW(Schema::read({"there/is/no.yaml"}), DataError);
    EXPECT_FALSE(Schema::read({}).hasAddedTypes());
    // The same types twice.
    EXPECT_THROW(Schema::read({TQX_STATION, TQX_STATION}), DataError);
}
