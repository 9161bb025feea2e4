// What the codec does with the blocks whose every byte is known: sizes, codes, derived values,
// context, encoding.

#include "RandomBlock.h"
#include "RecordGuard.h"
#include "korcg_load.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace
{

using namespace Kor::MessageApi;

const TQX_TypeLayout& layoutOf(uint32_t record)
{
    return *TQX_layout(record);
}

std::vector<uint8_t> block(uint32_t record, unsigned revision = 0)
{
    std::mt19937_64 random(record);
    return randomBlock(layoutOf(record), {revision, 3, 0}, random);
}

struct CutCase {
    uint32_t record;
    unsigned revision;
    size_t bytes; ///< 0: whole
    int32_t result;
};

TEST(Decode, SizesAndCodesOfCutBlocks)
{
    const CutCase cases[] = {
        {110, 0, 88, 704},   {110, 1, 88, 704},   {110, 2, 96, 768},   {110, 2, 95, -1860},
        {110, 2, 86, -1854}, {110, 2, 85, -1853}, {110, 0, 87, -1859}, {110, 0, 7, -1858 + 6},
        {252, 0, 7, -4224},  {252, 0, 19, -4224}, {252, 0, 30, -4225}, {71, 0, 140, 1120},
        {110, 5, 95, 760},
    };
    for (const CutCase& row : cases) {
        std::vector<uint8_t> bytes = block(row.record, row.revision);
        ASSERT_GE(bytes.size(), row.bytes);
        bytes.resize(row.bytes);
        AnyRecord record;
        EXPECT_EQ(record.decode(bytes), row.result)
            << layoutOf(row.record).name << " revision " << row.revision << ", " << row.bytes
            << " bytes: " << TQX_errorName(row.result);
    }
}

// A MeasEpoch2 with one signal and `second` further ones, built by hand.
std::vector<uint8_t> measEpoch(unsigned sb1, unsigned sb2, unsigned further)
{
    std::vector<uint8_t> bytes(20 + sb1 + further * sb2, 0xee);
    korcg_store_u16(bytes.data() + 4, 4027);
    bytes[14] = 1;
    bytes[15] = static_cast<uint8_t>(sb1);
    bytes[16] = static_cast<uint8_t>(sb2);
    const uint8_t first[20] = {
        3, 0, 7,    5, 0x10, 0x27, 0, 0, 0x10, 0x27,
        0, 0, 0x64, 0, 2,    100,  0, 0, 0,    static_cast<uint8_t>(further)};
    std::copy(first, first + std::min(sb1, 20U), bytes.begin() + 20);
    if (sb1 < 20)
        return bytes;
    for (unsigned i = 0; i < further; ++i) {
        const uint8_t next[12] = {3, 0, 120, 0xfb, 0xff, 0, 0x10, 0, 0x64, 0, 0x20, 0};
        std::copy(next, next + std::min(sb2, 12U), bytes.begin() + 20 + sb1 + i * sb2);
    }
    return bytes;
}

TEST(Decode, EntriesTakeTheStatedLength)
{
    AnyRecord record;
    std::vector<uint8_t> none = measEpoch(20, 12, 0);
    none[14] = 0;
    none.resize(20);
    EXPECT_EQ(record.decode(none), 160);
    EXPECT_EQ(record.as<TQX_MeasEpoch2_s>().Type1, nullptr);

    const std::vector<uint8_t> longer = measEpoch(24, 16, 2);
    ASSERT_EQ(record.decode(longer), static_cast<int32_t>(longer.size() * 8));
    const TQX_MeasEpoch2_s& epoch = record.as<TQX_MeasEpoch2_s>();
    EXPECT_EQ(epoch.korcg_bits, 160U + 160U + 2 * 96U);
    EXPECT_EQ(epoch.Type1[0].Type2[1].CN0, 120);

    EXPECT_STREQ(TQX_errorName(record.decode(measEpoch(16, 12, 0))),
                 "TQX_ERR_MEASEPOCHCHANNELTYPE1_N2_EXT_BUFFER_OVERFLOW");
    std::vector<uint8_t> shortEntry = measEpoch(16, 12, 0);
    shortEntry.resize(48, 0);
    EXPECT_STREQ(TQX_errorName(record.decode(shortEntry)),
                 "TQX_ERR_MEASEPOCHCHANNELTYPE1_TYPE2_SIZE_UNDERFLOW");
    EXPECT_STREQ(TQX_errorName(record.decode(measEpoch(20, 8, 2))),
                 "TQX_ERR_MEASEPOCHCHANNELTYPE2_DOPPLEROFFSETLSB_SIZE_UNDERFLOW");
}

TEST(Decode, DerivedValuesOfMeasurements)
{
    AnyRecord record;
    ASSERT_GT(record.decode(measEpoch(20, 12, 1)), 0);
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

TEST(Decode, ByteCountedPayloadKeepsItsTail)
{
    TQX_DiffCorrIn_s source;
    TQX_init_DiffCorrIn(&source);
    source.Mode = 0;
    source.Data_Byte_Length = 7;
    source.RTCM2Words[0] = 0x04030201;
    source.RTCM2Words[1] = 0x00070605;
    std::vector<uint8_t> bytes(27);
    ASSERT_EQ(TQX_encode_DiffCorrIn(bytes.data(), 27, &source), 27 * 8);
    for (unsigned i = 0; i < 7; ++i)
        EXPECT_EQ(bytes[20 + i], i + 1);
    AnyRecord record;
    ASSERT_EQ(record.decode(bytes), 27 * 8);
    EXPECT_EQ(record.as<TQX_DiffCorrIn_s>().RTCM2Words[1], 0x00070605U);
    korcg_store_u16(bytes.data() + 16, 34 * 4);
    bytes.resize(20 + 34 * 4);
    EXPECT_STREQ(TQX_errorName(record.decode(bytes)),
                 "TQX_ERR_DIFFCORRIN_RTCM2WORDS_INT_BUFFER_OVERFLOW");
}

TEST(Encode, CodesOfShortBuffersAndLongTexts)
{
    TQX_ASCIIIn_s text;
    TQX_init_ASCIIIn(&text);
    std::vector<uint8_t> bytes(4000);
    EXPECT_EQ(TQX_encode_ASCIIIn(bytes.data(), 0, &text), -4224);
    EXPECT_EQ(TQX_encode_ASCIIIn(bytes.data(), 80, &text), 640);
    EXPECT_EQ(text.Length, 80);
    EXPECT_EQ(text.korcg_bits, 640U + 0U);
    text.StringLn = 2001;
    EXPECT_EQ(TQX_encode_ASCIIIn(bytes.data(), 4000, &text), -4229);
    text.StringLn = 11;
    EXPECT_EQ(TQX_encode_ASCIIIn(bytes.data(), 90, &text), -4228);

    TQX_PVTGeodetic2_s pvt;
    TQX_init_PVTGeodetic2(&pvt);
    EXPECT_EQ(TQX_encode_PVTGeodetic2(bytes.data(), 0, &pvt), -1858);
    EXPECT_EQ(TQX_encode_PVTGeodetic2(bytes.data(), 100, &pvt), 760);
    pvt.Revision = 2;
    EXPECT_EQ(TQX_encode_PVTGeodetic2(bytes.data(), 100, &pvt), 768);
    EXPECT_EQ(korcg_load_u16(bytes.data() + 4), 4007 | 2 << 13);
    EXPECT_EQ(pvt.ID, 0);
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

TEST(ErrorNames, StandWhereTheyBelong)
{
    const std::pair<int32_t, const char*> names[] = {
        {17, "TQX_ERR_NONE"},
        {-1, "TQX_ERR_INVALID_CRC"},
        {-2, "TQX_ERR_CHANNELSTATEINFO_ANTENNA_EXT_BUFFER_OVERFLOW"},
        {-7, "TQX_ERR_CHANNELSTATEINFO_PVTINFO_SIZE_UNDERFLOW"},
        {-8, "TQX_ERR_CHANNELSTATEINFO_INTERNAL"},
        {-151, "TQX_ERR_BUFFER_OVERFLOW"},
        {-1826, "TQX_ERR_PVTGEODETIC2_SYNC1_EXT_BUFFER_OVERFLOW"},
        {-1859, "TQX_ERR_PVTGEODETIC2_PADDING0_EXT_BUFFER_OVERFLOW"},
        {-1861, "TQX_ERR_PVTGEODETIC2_PADDING2_SIZE_UNDERFLOW"},
        {-1863, "TQX_ERR_PVTGEODETIC2_CRC_CHECKSUM"},
        {-4229, "TQX_ERR_ASCIIIN_ASCIISTRING_INT_BUFFER_OVERFLOW"},
        {-4230, "TQX_ERR_ASCIIIN_ASCIISTRING_SIZE_UNDERFLOW"},
        {-5661, "TQX_ERR_MEASEPOCH2_INTERNAL"},
        {-5662, "TQX_ERR_MEASEPOCH2_CRC_CHECKSUM"},
        {-5829, "TQX_ERR_OSNMAKEY_DISABLED"},
        {-5904, "TQX_ERR_PVTGEODETIC2_DISABLED"},
        {-6060, "TQX_ERR_MEASEPOCH2_DISABLED"},
        {-6071, "TQX_ERR_LOGSTATUS_DISABLED"},
        {-6072, "TQX_ERR_INVALID_MESSAGE"},
        {-6073, "TQX_ERR_EOF"},
        {-6074, "???"},
    };
    for (const auto& [code, name] : names)
        EXPECT_STREQ(TQX_errorName(code), name) << code;
}

} // namespace
