// What the codec does with blocks whose every byte is known.

#include "RecordGuard.h"

#include <gtest/gtest.h>

#include <vector>

namespace
{

using namespace Kor::MessageApi;

// A MeasEpoch2 with one signal and a second one of the same satellite, built by hand.
std::vector<uint8_t> measEpoch()
{
    return {0, 0, 0, 0, 0xbb, 0x0f, 0, 0, 0, 0, 0, 0, 0, 0, 1, 20, 12, 0, 0, 0, // main block
            3, 0, 7, 5, 0x10, 0x27, 0, 0, 0x10, 0x27, 0, 0, 0x64, 0, 2, 100, 0, 0, 0, 1,
            // second signal
            3, 0, 120, 0xfb, 0xff, 0, 0x10, 0, 0x64, 0, 0x20, 0};
}

TEST(Decode, NoEntriesAreNoArray)
{
    AnyRecord record;
    std::vector<uint8_t> none = measEpoch();
    none[14] = 0;
    none.resize(20);
    EXPECT_EQ(record.decode(none), 160);
    EXPECT_EQ(record.as<TQX_MeasEpoch2_s>().Type1, nullptr);
}

TEST(Decode, DerivedValuesOfMeasurements)
{
    AnyRecord record;
    ASSERT_GT(record.decode(measEpoch()), 0);
    const TQX_MeasEpochChannelType1_s& first = record.as<TQX_MeasEpoch2_s>().Type1[0];
    EXPECT_EQ(first.CarrierFrequency, 1575420000.0);
    EXPECT_DOUBLE_EQ(first.CN0_dBHz, 35.0);
    EXPECT_DOUBLE_EQ(first.DopplerHz, 1.0);
    EXPECT_DOUBLE_EQ(first.Wavelength, 299792458.0 / 1575420000.0);
    EXPECT_DOUBLE_EQ(first.CodeRange, (5 * 4294967296.0 + 10000) * 0.001);
    EXPECT_DOUBLE_EQ(first.CarrierPhase,
                     first.CodeRange / first.Wavelength + (2 * 65536 + 100) * 0.001);
    const TQX_MeasEpochChannelType2_s& second = first.Type2[0];
    EXPECT_EQ(second.CarrierFrequency, 1227600000.0);
    EXPECT_EQ(second.CodeOffsetMSB, 3);
    EXPECT_EQ(second.DopplerOffsetMSB, -1);
    EXPECT_DOUBLE_EQ(second.CodeRange, first.CodeRange + (3 * 65536 + 16) * 0.001);
    EXPECT_DOUBLE_EQ(second.DopplerHz,
                     1.0 * (1227600000.0 / 1575420000.0) + (-65536 + 32) * 0.0001);
}

TEST(Encode, ForcesEntryLengthsOfEarlyRevisions)
{
    for (unsigned revision = 0; revision < 3; ++revision) {
        TQX_MeasEpoch2_s epoch;
        TQX_init_MeasEpoch2(&epoch);
        epoch.Revision = static_cast<uint8_t>(revision);
        TQX_append_MeasEpoch2_Type1(&epoch);
        TQX_append_MeasEpochChannelType1_Type2(&epoch.Type1[0]);
        TQX_append_MeasEpoch2_Type1(&epoch);
        ASSERT_EQ(epoch.N1, 2);
        for (int i = 0; i < 2; ++i) {
            EXPECT_EQ(epoch.Type1[i].korcg_type, 308U);
            EXPECT_EQ(epoch.Type1[i].korcg_father, &epoch);
            EXPECT_EQ(epoch.Type1[i].CN0_dBHz, 10.0);
        }
        EXPECT_EQ(epoch.Type1[0].N2, 1);
        std::vector<uint8_t> bytes(200);
        ASSERT_EQ(TQX_encode_MeasEpoch2(bytes.data(), 200, &epoch), (20 + 40 + 12) * 8);
        EXPECT_EQ(epoch.korcg_bits, (20U + 40U + 12U) * 8);
        EXPECT_EQ(bytes[15], revision < 2 ? 20 : 0);
        EXPECT_EQ(epoch.SB2Length, revision < 2 ? 12 : 0);
    }
}

TEST(ErrorNames, OutsideTheErrors)
{
    EXPECT_STREQ(TQX_errorName(17), "TQX_ERR_NONE");
    EXPECT_STREQ(TQX_errorName(TQX_lowestCode - 1), "???");
}

} // namespace
