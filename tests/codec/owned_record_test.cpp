#include "TQX_OwnedRecord.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

using namespace Kor::MessageApi;

namespace
{

std::vector<uint8_t> encodedMeasurements(uint8_t signals)
{
    TQX_MeasEpoch2_s sent;
    TQX_init_MeasEpoch2(&sent);
    for (uint8_t i = 0; i < signals; ++i) {
        TQX_append_MeasEpoch2_Type1(&sent);
    }
    sent.SB1Length = 20;
    sent.SB2Length = 12;
    std::vector<uint8_t> bytes(4096);
    const int bits =
        TQX_encode_MeasEpoch2(bytes.data(), static_cast<unsigned short>(bytes.size()), &sent);
    EXPECT_GT(bits, 0);
    bytes.resize(static_cast<size_t>(bits) / 8);
    return bytes;
}

int32_t decode(TQX_OwnedRecord& record, const std::vector<uint8_t>& bytes)
{
    return record.decode(nullptr, bytes.data(), static_cast<uint16_t>(bytes.size()));
}

} // namespace

// That nothing leaks or is freed twice is what the sanitizers look at here.
TEST(OwnedRecord, HoldsOneBlockAfterTheOther)
{
    TQX_OwnedRecord record;
    EXPECT_TRUE(record.isEmpty());
    EXPECT_EQ(record.layout(), nullptr);
    EXPECT_EQ(record.as<TQX_MeasEpoch2_s>(), nullptr);

    const std::vector<uint8_t> block = encodedMeasurements(7);
    for (int pass = 0; pass < 3; ++pass) {
        ASSERT_GT(decode(record, block), 0);
        ASSERT_NE(record.as<TQX_MeasEpoch2_s>(), nullptr);
        EXPECT_EQ(record.as<TQX_MeasEpoch2_s>()->N1, 7);
        EXPECT_EQ(record.as<TQX_PVTGeodetic2_s>(), nullptr);
        EXPECT_STREQ(record.layout()->name, "MeasEpoch2");
    }

    // Cut off within its entries.
    EXPECT_LT(record.decode(nullptr, block.data(), 60), 0);
    EXPECT_TRUE(record.isEmpty());
    record.clear();
    EXPECT_TRUE(record.isEmpty());
}

TEST(OwnedRecord, MovesWithWhatItOwns)
{
    TQX_OwnedRecord first;
    ASSERT_GT(decode(first, encodedMeasurements(3)), 0);
    TQX_OwnedRecord second(std::move(first));
    EXPECT_EQ(second.as<TQX_MeasEpoch2_s>()->N1, 3);

    TQX_OwnedRecord third;
    ASSERT_GT(decode(third, encodedMeasurements(5)), 0);
    third = std::move(second);
    EXPECT_EQ(third.as<TQX_MeasEpoch2_s>()->N1, 3);
}

TEST(OwnedRecord, StartsWithTheValuesOfAnyType)
{
    for (uint32_t type = 1; type <= TQX_lastRecordType; ++type) {
        const TQX_TypeLayout* layout = TQX_layout(type);
        ASSERT_NE(layout, nullptr);
        const TQX_OwnedRecord record(*layout);
        EXPECT_EQ(record.layout(), layout);
    }
    TQX_OwnedRecord record;
    record.init(*TQX_layout(TQX_recordTypeOf<TQX_DOP2_s>));
    EXPECT_NE(record.as<TQX_DOP2_s>(), nullptr);
}
