// What callers of the codec may rely on: the head of any record, counts of records filled by hand,
// the buffer of an encoder, values that are not available.

#include "DerivedValues.h"
#include "FieldRoles.h"
#include "RecordFiller.h"
#include "RecordGuard.h"
#include "RecordMembers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <type_traits>

namespace
{

using namespace Kor::MessageApi;

TEST(RecordHead, IsSeenThroughAnyPointer)
{
    TQX_MeasEpoch2_s epoch;
    TQX_init_MeasEpoch2(&epoch);
    TQX_MeasEpochChannelType1_s* channel = TQX_append_MeasEpoch2_Type1(&epoch);
    const TQX_MeasEpoch2_s& constEpoch = epoch;
    const void* anyRecord = channel;

    static_assert(std::is_same_v<decltype(TQX_AS_KORCG_HEADER(&epoch)), KorcgHeader_s*>);
    static_assert(std::is_same_v<decltype(TQX_AS_KORCG_HEADER(&constEpoch)), const KorcgHeader_s*>);
    EXPECT_EQ(TQX_AS_KORCG_HEADER(&constEpoch)->korcg_type, 371U);
    EXPECT_EQ(TQX_AS_KORCG_HEADER(anyRecord)->korcg_father, &epoch);
    EXPECT_TRUE(TQX_IS_BLOCK_HEADER(&epoch));
    EXPECT_TRUE(TQX_IS_BLOCK_HEADER(&constEpoch));
    EXPECT_TRUE(TQX_IS_BLOCK_HEADER(TQX_AS_KORCG_HEADER(channel)->korcg_father));
    EXPECT_FALSE(TQX_IS_BLOCK_HEADER(channel));
    EXPECT_FALSE(TQX_IS_BLOCK_HEADER(anyRecord));

    // Both are the same memory, also for an optimiser.
    epoch.korcg_bits = 1;
    TQX_AS_KORCG_HEADER(&epoch)->korcg_bits = 2;
    EXPECT_EQ(epoch.korcg_bits, 2U);
}

// Elements of a counted array that a caller announces, beside what there is room for.
TEST(Counts, OfNumbersEndWithTheRoom)
{
    for (const TQX_TypeLayout* type : allTypes()) {
        TQX_AnyRecord_u area;
        type->init(&area);
        for (int row = 0; row < type->fieldCount; ++row) {
            const TQX_FieldLayout& field = type->fields[row];
            const TQX_FieldLayout& array =
                field.kind == TQX_FieldKind::Bits ? type->fields[field.parent] : field;
            if (array.kind != TQX_FieldKind::CountedArray)
                continue;
            SCOPED_TRACE(std::string(type->name) + "::" + field.name);
            const TQX_FieldLayout& count = type->fields[array.count];
            const uint32_t unit = array.countsBytes ? TQX_elementSize(array) : 1;
            const uint32_t most = TQX_elementSize(count) == 1 ? 0xff : 0xffff;
            for (const uint32_t announced : {0U, 1U, array.elements - 1U, uint32_t{array.elements},
                                             array.elements + 1U, most / unit}) {
                if (announced * unit > most)
                    continue;
                writeUnsigned(count, &area, 0, uint64_t{announced} * unit);
                EXPECT_EQ(TQX_elementCount(*type, field, &area),
                          std::min<uint32_t>(announced, array.elements));
            }
        }
    }
}

// The ID has no room, and the first byte after it goes where it would have been.
TEST(EncodeIntoFiveBytes, WritesNoPartOfTheId)
{
    std::mt19937_64 random(1);
    for (const TQX_TypeLayout* type : mainTypes()) {
        SCOPED_TRACE(type->name);
        AnyRecord record;
        type->init(record.get());
        fillRecord(*type, record.get(), 0, {}, [&random](unsigned) { return random(); });
        uint8_t expected = 0x5a;
        for (int row = 0; row < type->fieldCount; ++row) {
            const TQX_FieldLayout& field = type->fields[row];
            if (field.kind != TQX_FieldKind::Value || TQX_elementSize(field) != 1 ||
                field.wireOffset < 4 || field.presence == TQX_Presence::OnlyRevision)
                continue;
            expected = static_cast<uint8_t>(TQX_unsignedValue(field, record.get()));
            break;
        }
        uint8_t buffer[] = {0x5a, 0x5a, 0x5a, 0x5a, 0x5a, 0x5a};
        EXPECT_LT(type->encode(buffer, 5, record.get()), 0);
        EXPECT_EQ(buffer[4], expected);
        EXPECT_EQ(buffer[5], 0x5a);
    }
}

// Sets of measurements differ in size by their kind. Where the encoder forces their length, each
// takes that of the longest kind; where the record says the length, nothing is added.
TEST(EncodeChosenContent, FillsUpToForcedLengthsOnly)
{
    const uint32_t longest = TQX_entrySize(344, 0);
    constexpr uint8_t unknownKind = 255;
    constexpr int empty = 4;
    ASSERT_EQ(longest, 28U);
    for (unsigned revision = 0; revision < 8; ++revision) {
        for (const unsigned stated : {0U, 28U, 40U}) {
            TQX_ExtSensorMeas1_s sets;
            TQX_init_ExtSensorMeas1(&sets);
            sets.Revision = static_cast<uint8_t>(revision);
            sets.SBLength = static_cast<uint8_t>(stated);
            for (int i = 0; i < 2; ++i)
                TQX_append_ExtSensorMeas1_ExtSensorMeasSet(&sets)->Type = unknownKind;
            std::vector<uint8_t> bytes(200, 0x5a);
            const bool isForced = revision < 2;
            const int size = 16 + 2 * (isForced ? 28 : empty);
            SCOPED_TRACE(revision);
            ASSERT_EQ(TQX_encode_ExtSensorMeas1(bytes.data(), 200, &sets), size * 8);
            EXPECT_EQ(bytes[15], isForced ? 28U : stated);
            EXPECT_EQ(sets.SBLength, bytes[15]);
            EXPECT_EQ(bytes[static_cast<size_t>(size) - 1],
                      isForced ? 0 : sets.ExtSensorMeasSet[1].ObsInfo);
            EXPECT_EQ(bytes[static_cast<size_t>(size)], 0x5a);
        }
    }
}

TEST(Lengths, OfVectorsWithoutAllComponentsAreNotAvailable)
{
    using namespace Derived;
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double inf = std::numeric_limits<double>::infinity();
    EXPECT_EQ(length2(3, -4), 5);
    EXPECT_EQ(length3(1, 2, -2), 3);
    EXPECT_EQ(length2(inf, 0), inf);
    for (const double none : {nan, -nan, notAvailable}) {
        for (const double other : {0.0, 4.0, inf, nan}) {
            EXPECT_EQ(length2(none, other), notAvailable);
            EXPECT_EQ(length2(other, none), notAvailable);
            EXPECT_EQ(length3(none, other, other), notAvailable);
            EXPECT_EQ(length3(other, none, other), notAvailable);
            EXPECT_EQ(length3(other, other, none), notAvailable);
        }
    }
}

} // namespace
