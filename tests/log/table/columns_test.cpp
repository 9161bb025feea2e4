// What single columns hold, by hand-made blocks.

#include "MadeBlocks.h"
#include "Tables.h"
#include "tqx/log/DataError.h"
#include "tqx/log/record/TypeNames.h"
#include "tqx/log/table/Gather.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace Kor::MessageApi;

namespace
{

using Texts = std::vector<std::string>;

const TQX_TypeLayout& position()
{
    return *tqx::findType("PVTGeodetic2");
}

const TQX_TypeLayout& measurements()
{
    return *tqx::findType("MeasEpoch2");
}

TEST(Gather, TakesNumbersOutOfTheirWords)
{
    const uint8_t words[] = {0xff, 0x5a, 0x34, 0xa1, 0xff, 0x00, 0x0c, 0x5f};
    const struct {
        tqx::NumberPlace place;
        int16_t first;
        int16_t second; // four bytes on
    } cases[] = {
        {{1, 1, 0, 8, false}, 0x5a, 0},
        {{1, 1, 4, 3, false}, 5, 0},
        {{1, 1, 4, 3, true}, -3, 0},
        {{2, 2, 0, 16, false}, static_cast<int16_t>(0xa134), 0x5f0c},
        {{2, 2, 4, 9, true}, 0x13, -0x10},
        {{2, 2, 5, 11, true}, -0x2f7, 0x2f8},
        {{0, 4, 24, 8, true}, -0x5f, 0x5f},
    };
    for (const auto& each : cases) {
        int16_t out[2] = {};
        tqx::gatherFor(each.place, sizeof(int16_t))(words + each.place.offset, 4, 2, each.place,
                                                    out);
        EXPECT_EQ(out[0], each.first);
        EXPECT_EQ(out[1], each.second);
    }
}

TEST(TimeColumn, IsInGpsTimeAndUtc)
{
    constexpr uint32_t week2017 = 1930; // begins 2017-01-01
    const struct {
        uint32_t tow;
        uint16_t week;
        const char* time;
        const char* utc;
    } cases[] = {
        {604000100, 2300, "1707608800100000000", "1707608782100000000"},
        {0, 0, "315964800000000000", "315964800000000000"},
        {16999, week2017, "1483228816999000000", "1483228799999000000"},
        {17500, week2017, "1483228817500000000", "1483228800500000000"}, // the leap second
        {18500, week2017, "1483228818500000000", "1483228800500000000"},
        {0xffffffff, 2300, "null", "null"},
        {5000, 0xffff, "null", "null"},
        {5000, 65534, "null", "null"}, // more nanoseconds than there is room for
    };
    tqx::TableOptions options;
    options.hasUtc = true;
    std::vector<Bytes> blocks;
    Texts times;
    Texts utc;
    for (const auto& each : cases) {
        blocks.push_back(madeBlock<TQX_PVTGeodetic2_s>([&](TQX_PVTGeodetic2_s& record) {
            record.TOW = each.tow;
            record.WNc = each.week;
        }));
        times.emplace_back(each.time);
        utc.emplace_back(each.utc);
    }
    const WholeTable table(position(), options, blocks);
    EXPECT_EQ(table.column("time"), times);
    EXPECT_EQ(table.column("utc"), utc);
    EXPECT_STREQ(table.typeOf("time").format, "tsn:");
    EXPECT_EQ(metadataOf(table.typeOf("time"), "time_scale"), "GPS");
    EXPECT_EQ(metadataOf(table.typeOf("utc"), "time_scale"), "UTC");
}

TEST(NumberColumns, HoldWhatIsKnown)
{
    const std::vector<Bytes> blocks = {
        madeBlock<TQX_PVTGeodetic2_s>([](TQX_PVTGeodetic2_s& record) {
            record.Revision = 1;
            record.Height = 1.5;
            record.MeanCorrAge = 125;
            record.NrBases = 3;
            record.Mode = 2;
            record.TimeSystem = 9;
        }),
        madeBlock<TQX_PVTGeodetic2_s>([](TQX_PVTGeodetic2_s& record) {
            record.Height = -2e10;
            record.Vn = std::numeric_limits<float>::quiet_NaN();
            record.Ve = -2e10F;
            record.MeanCorrAge = 65535;
            record.NrBases = 3;
            record.Mode = 0x4f;
            record.TimeSystem = 255;
        }),
    };
    const WholeTable table(position(), {}, blocks);
    const struct {
        const char* name;
        const char* format;
        const char* unit;
        Texts values;
    } cases[] = {
        {"Height", "g", "meter", {realText(1.5), "null"}},
        {"Vn", "f", "meterpersecond", {realText(0), "NaN"}},
        {"Ve", "f", "meterpersecond", {realText(0), "null"}},
        {"MeanCorrAge", "g", "second", {realText(1.25), "null"}},
        {"NrBases", "C", "", {"3", "null"}}, // since revision 1
        {"PVTMode", "c", "", {quoted("Differential"), quoted("15")}},
        {"TimeSystem", "s", "", {quoted("9"), "null"}},
        {"ReferenceID", "S", "", {"0", "0"}},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.name);
        EXPECT_STREQ(table.typeOf(each.name).format, each.format);
        EXPECT_EQ(metadataOf(table.typeOf(each.name), "unit"), each.unit);
        EXPECT_EQ(table.column(each.name), each.values);
    }
    EXPECT_EQ(metadataOf(table.columns, "block"), "PVTGeodetic2");
    EXPECT_EQ(metadataOf(table.typeOf("Height"), "description"),
              "height above the ellipsoid of the datum");

    tqx::TableOptions stored;
    stored.isScaled = stored.isNamed = stored.hidesDoNotUse = false;
    const WholeTable raw(position(), stored, blocks);
    EXPECT_EQ(raw.column("MeanCorrAge"), (Texts{"125", "65535"}));
    EXPECT_EQ(metadataOf(raw.typeOf("MeanCorrAge"), "scale"), "0.01");
    EXPECT_EQ(raw.column("TimeSystem"), (Texts{"9", "255"}));
}

// An address with a byte that would mean "not available" on its own.
TEST(NumberColumns, HoldWholeValues)
{
    const WholeTable table(*TQX_layout(TQX_recordTypeOf<TQX_IPStatus1_s>), {},
                           {madeBlock<TQX_IPStatus1_s>([](TQX_IPStatus1_s& record) {
                                record.IPAddress[0] = 10;
                                record.IPAddress[3] = 7;
                            }),
                            madeBlock<TQX_IPStatus1_s>([](TQX_IPStatus1_s&) {})});
    EXPECT_EQ(table.column("IPAddress"), (Texts{"[10,0,0,7]", "[null,null,null,null]"}));
}

TEST(NameColumns, HaveOneDictionaryInAllBatches)
{
    tqx::TableOptions options;
    options.batchRows = 1;
    options.fields = tqx::FieldFilter({"PVTMode"});
    const Bytes block =
        madeBlock<TQX_PVTGeodetic2_s>([](TQX_PVTGeodetic2_s& record) { record.Mode = 1; });
    const WholeTable table(position(), options, {block, block});
    ASSERT_EQ(table.batches.size(), 2U);
    const int index = findColumn(table.columns, "PVTMode");
    const ArrowArray& first = *table.batches[0].children[index]->dictionary;
    const ArrowArray& second = *table.batches[1].children[index]->dictionary;
    EXPECT_EQ(first.buffers[2], second.buffers[2]);
    EXPECT_EQ(first.length, 16); // codes of four bits
}

TEST(HeaderColumns, ComeWhenTheyAreNamed)
{
    tqx::TableOptions options;
    options.fields = tqx::FieldFilter({"Sync1", "BlockNumber", "Length", "TOWc"});
    options.hasFile = true;
    options.hasOffset = false;
    const auto timed = [](uint32_t tow) {
        return madeBlock<TQX_PVTGeodetic2_s>([=](TQX_PVTGeodetic2_s& record) { record.TOW = tow; });
    };
    const Bytes block = timed(4000000000);
    const WholeTable table(position(), options, {block}, 2);
    EXPECT_EQ(table.schema->getNames(),
              (Texts{"time", "file", "Sync1", "BlockNumber", "Length", "TOWc"}));
    EXPECT_EQ(table.column("file"), Texts{quoted("day.tqx")});
    EXPECT_EQ(table.column("Sync1"), Texts{quoted("$")});
    EXPECT_EQ(table.column("BlockNumber"), Texts{"4007"});
    EXPECT_EQ(table.column("Length"), Texts{std::to_string(block.size())});
    // Two weeks later, in 32 bits.
    EXPECT_EQ(table.column("TOWc"), Texts{std::to_string(4000000000U + 2 * 604800000U)});
    EXPECT_EQ(WholeTable(position(), options, {timed(0xffffffff)}, 2).column("TOWc"),
              Texts{"null"});
}

TEST(TextColumns, AreUtf8UpToTheFirstZero)
{
    const auto named = [](const std::string& name) {
        return madeBlock<TQX_ReceiverSetup1_s>([&](TQX_ReceiverSetup1_s& record) {
            name.copy(record.MarkerName, name.size());
            record.MarkerName[name.size()] = 0;
        });
    };
    const WholeTable table(*tqx::findType("ReceiverSetup1"), {},
                           {named("Z\xfcrich"), named(""), named(std::string("a\0b", 3))});
    EXPECT_STREQ(table.typeOf("MarkerName").format, "u");
    EXPECT_EQ(table.column("MarkerName"),
              (Texts{quoted("Z\xc3\xbcrich"), quoted(""), quoted("a")}));
}

Bytes twoSignals(uint8_t cn0, int32_t doppler, int codeOffset)
{
    return madeBlock<TQX_MeasEpoch2_s>([=](TQX_MeasEpoch2_s& record) {
        auto& first = *TQX_append_MeasEpoch2_Type1(&record);
        first.SVID = 7;
        first.CN0 = cn0;
        first.Doppler = doppler;
        first.CodeLSB = 20000000;
        auto& second = *TQX_append_MeasEpochChannelType1_Type2(&first);
        second.CN0 = 160;
        second.OffsetsMSB = static_cast<uint8_t>(codeOffset & 7);
    });
}

TEST(DerivedColumns, AreNullWithoutTheirInputs)
{
    tqx::TableOptions options;
    options.fields = tqx::FieldFilter({"Type1.CN0_dBHz", "Type1.Type2.CN0_dBHz",
                                       "Type1.Type2.CodeRange", "Type1.Type2.DopplerHz"});
    const WholeTable table(measurements(), options,
                           {twoSignals(160, 10000, 0), twoSignals(255, INT32_MIN, -4)});
    const std::string range = realText(20000.0);
    EXPECT_EQ(table.column("Type1"),
              (Texts{"[{CN0_dBHz=" + realText(50) + ",Type2=[{CN0_dBHz=" + realText(50) +
                         ",CodeRange=" + range + ",DopplerHz=" + realText(1) + "}]}]",
                     "[{CN0_dBHz=null,Type2=[{CN0_dBHz=" + realText(50) +
                         ",CodeRange=null,DopplerHz=null}]}]"}));
}

TEST(SubBlockRows, SayWhatTheyBelongTo)
{
    tqx::TableOptions options;
    options.rows = "Type1.Type2";
    options.fields = tqx::FieldFilter({"Type1.Type2.CN0"});
    options.hasOffset = false;
    const WholeTable table(measurements(), options, {twoSignals(0, 0, 0), twoSignals(0, 0, 0)});
    EXPECT_EQ(table.schema->getNames(),
              (Texts{"time", "Type1.AntennaID", "Type1.SVID", "Type1.SignalType", "CN0"}));
    EXPECT_EQ(table.column("Type1.SVID"), (Texts{quoted("G07"), quoted("G07")}));
}

TEST(TableSchema, RefusesWhatMakesNoTable)
{
    tqx::TableOptions noSuchRows;
    noSuchRows.rows = "Type1.Typo";
    tqx::TableOptions noFields;
    noFields.fields = tqx::FieldFilter({"Height"});
    tqx::TableOptions noRoom;
    noRoom.batchRows = 0;
    const struct {
        const char* type;
        const tqx::TableOptions* options;
        const char* error;
    } cases[] = {
        {"MeasEpoch2", &noSuchRows, "there is no sub-block of MeasEpochChannelType1 named Typo"},
        {"MeasEpoch2", &noFields, "no field of MeasEpoch2 is chosen"},
        {"MeasEpoch2", &noRoom, "a batch needs room for at least one row"},
        {"MeasEpochChannelType1", nullptr,
         "MeasEpochChannelType1 is a sub-block, a table needs a block"},
    };
    for (const auto& each : cases) {
        try {
            const tqx::TableSchema schema(*tqx::findType(each.type),
                                          each.options ? *each.options : tqx::TableOptions());
            ADD_FAILURE() << "expected: " << each.error;
        } catch (const tqx::DataError& error) {
            EXPECT_EQ(std::string(error.what()).substr(0, std::string(each.error).size()),
                      each.error);
        }
    }
}

TEST(TableBuilder, EndsABatchAfterSoManyBytes)
{
    const Bytes block = madeBlock<TQX_PVTGeodetic2_s>([](TQX_PVTGeodetic2_s&) {});
    tqx::TableOptions options;
    options.batchBytes = 2 * block.size() + 1;
    const WholeTable table(position(), options, std::vector<Bytes>(7, block));
    ASSERT_EQ(table.batches.size(), 3U);
    EXPECT_EQ(table.batches[0].length, 3);
    EXPECT_EQ(table.batches[2].length, 1);
    EXPECT_EQ(table.column("offset"), (Texts{"100", "101", "102", "103", "104", "105", "106"}));
}

TEST(TableBuilder, HasNoBatchWithoutRows)
{
    const Bytes block = madeBlock<TQX_PVTGeodetic2_s>([](TQX_PVTGeodetic2_s&) {});
    tqx::TableOptions options;
    options.batchBytes = 1;
    const Bytes cut(block.begin(), block.begin() + 40);
    const WholeTable table(position(), options, {cut, cut, block, block, cut});
    EXPECT_EQ(table.refused.size(), 3U);
    EXPECT_EQ(table.column("offset"), (Texts{"102", "103"}));
    ASSERT_GE(table.batches.size(), 2U);
    EXPECT_EQ(table.batches[0].length, 1);
}

} // namespace
