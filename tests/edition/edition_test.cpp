// What a second edition adds works, and what the first one has stays as it is.

#include "TQX_FieldFacts.h"
#include "TQX_OwnedRecord.h"
#include "TQX_codec.h"
#include "model/Names.h"
#include "read/Load.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

using namespace Kor::MessageApi;
namespace generator = korcg::generator;

namespace
{

const generator::Format& firstEdition()
{
    static const generator::Format format = [] {
        generator::Errors errors;
        generator::Format first =
            load(generator::readSources(TQX_DESCRIPTION, errors), errors, {1, nullptr});
        EXPECT_TRUE(errors.empty());
        return first;
    }();
    return format;
}

const TQX_FieldLayout* rowOf(const TQX_TypeLayout& type, const std::string& name)
{
    for (int row = 0; row < type.fieldCount; ++row) {
        if (type.fields[row].name == name)
            return type.fields + row;
    }
    return nullptr;
}

template<typename Record>
std::vector<uint8_t> encoded(int encode(unsigned char*, unsigned short, Record*), Record& record)
{
    std::vector<uint8_t> bytes(1000);
    const int bits = encode(bytes.data(), static_cast<unsigned short>(bytes.size()), &record);
    EXPECT_GT(bits, 0) << TQX_errorName(bits);
    bytes.resize(bits > 0 ? static_cast<size_t>(bits) / 8 : 0);
    return bytes;
}

int32_t decode(TQX_OwnedRecord& record, const std::vector<uint8_t>& bytes,
               TQX_Context_s* context = nullptr)
{
    return record.decode(context, bytes.data(), static_cast<uint16_t>(bytes.size()));
}

TEST(LaterEdition, WhatTheFirstHasKeepsNumbersCodesAndPlaces)
{
    const generator::Format& first = firstEdition();
    ASSERT_EQ(first.types.size(), TQX_lastFirstRecordType);
    ASSERT_EQ(TQX_edition, 2U);
    for (const generator::RecordType& type : first.types) {
        const TQX_TypeLayout& layout = *TQX_layout(static_cast<uint32_t>(type.record));
        SCOPED_TRACE(type.name);
        EXPECT_EQ(layout.name, type.name);
        EXPECT_EQ(layout.edition, 1);
        EXPECT_EQ(layout.blockNumber, type.number);
        EXPECT_EQ(layout.sizeUnderflow, type.sizeUnderflow);
        EXPECT_EQ(layout.internal, type.internal);
        EXPECT_EQ(layout.disabled, type.disabled);
        EXPECT_EQ(layout.ownRevision, type.highestRevision);
        const TQX_FieldLayout* before = nullptr;
        for (const generator::Field& field : type.fields) {
            const TQX_FieldLayout* row = rowOf(layout, field.name);
            ASSERT_NE(row, nullptr) << field.name;
            EXPECT_GT(row, before) << field.name;
            EXPECT_EQ(row->edition, 1) << field.name;
            EXPECT_EQ(row->code, field.code) << field.name;
            EXPECT_EQ(row->width, field.width) << field.name;
            EXPECT_EQ(row->shift, field.shift) << field.name;
            before = row;
        }
    }
    for (int code = -1; code >= -static_cast<int>(first.codeNames.size()); --code)
        ASSERT_EQ(TQX_errorName(code), first.codeNames[static_cast<size_t>(-code - 1)]);
}

TEST(LaterEdition, TypesAndCodesAreThoseOfTheLedger)
{
    const uint32_t last = TQX_lastFirstRecordType;
    EXPECT_EQ(TQX_recordType(4301), last + 1);
    EXPECT_STREQ(TQX_layout(last + 2)->name, "ScanBand"); // above the block that holds it
    EXPECT_EQ(TQX_recordType(4302), last + 4);
    EXPECT_EQ(TQX_lastRecordType, last + 5);
    EXPECT_EQ(TQX_layout(TQX_lastRecordType + 1), nullptr);

    const auto lowest = -static_cast<int32_t>(firstEdition().codeNames.size());
    EXPECT_STREQ(TQX_errorName(lowest), "TQX_ERR_EOF");
    EXPECT_STREQ(TQX_errorName(lowest - 1),
                 "TQX_ERR_PVTGEODETIC2_CLOCKQUALITY_EXT_BUFFER_OVERFLOW");
    EXPECT_STREQ(TQX_errorName(TQX_lowestCode), "TQX_ERR_THERMALSTATE_INTERNAL");
    EXPECT_STREQ(TQX_errorName(TQX_lowestCode - 1), "???");
}

TEST(LaterEdition, ContextKeepsItsMembersAndHasBitsForLaterTypes)
{
    EXPECT_EQ(offsetof(TQX_Context_s, lastUnknownBlockNumber), 48U);
    EXPECT_EQ(offsetof(TQX_Context_s, weekCounter), 50U);
    EXPECT_EQ(offsetof(TQX_Context_s, lastTOW), 52U);
    EXPECT_EQ(offsetof(TQX_Context_s, laterMask), 56U);
    EXPECT_EQ(sizeof(TQX_Context_s::laterMask), 80U);

    TQX_Context_s context;
    TQX_init_context(&context);
    for (uint32_t type = 1; type <= TQX_lastRecordType + 3; ++type) {
        const TQX_TypeLayout* layout = TQX_layout(type);
        EXPECT_EQ(TQX_isEnabled(&context, type), layout != nullptr && layout->blockNumber != 0)
            << type;
    }
    // The last type that there is room for, and the first that there is none for.
    const unsigned room = TQX_lastFirstRecordType + TQX_laterRecordTypes;
    TQX_enable(context, room, true);
    EXPECT_EQ(context.laterMask[79], 1);
    const TQX_Context_s before = context;
    TQX_enable(context, room + 1, true);
    EXPECT_FALSE(TQX_isEnabled(&context, room + 1));
    EXPECT_EQ(std::memcmp(&before, &context, sizeof before), 0);
}

TEST(LaterEdition, DisabledTypesAreNotDecoded)
{
    TQX_SpectrumScan_s scan;
    TQX_init_SpectrumScan(&scan);
    const std::vector<uint8_t> block = encoded(TQX_encode_SpectrumScan, scan);
    TQX_Context_s context;
    TQX_init_context(&context);
    const TQX_Context_s fresh = context;
    TQX_enable(context, scan.korcg_type, false);
    EXPECT_EQ(std::memcmp(context.enableMask, fresh.enableMask, sizeof fresh.enableMask), 0);
    TQX_OwnedRecord record;
    EXPECT_STREQ(TQX_errorName(decode(record, block, &context)), "TQX_ERR_SPECTRUMSCAN_DISABLED");
    TQX_enable(context, scan.korcg_type, true);
    EXPECT_GT(decode(record, block, &context), 0);
}

TEST(LaterEdition, NestedBlocksAreEncodedAndDecoded)
{
    TQX_SpectrumScan_s scan;
    TQX_init_SpectrumScan(&scan);
    scan.Window = 1;
    for (unsigned band = 0; band < 2; ++band)
        TQX_append_SpectrumScan_Bands(&scan)->Centre = 1575420 + band;
    for (int16_t bin = 0; bin < 3; ++bin)
        TQX_append_ScanBand_Bins(&scan.Bands[1])->Power = static_cast<int16_t>(-100 * bin);
    scan.Bands[1].Bins[2].Flags = 2;

    TQX_OwnedRecord record;
    ASSERT_GT(decode(record, encoded(TQX_encode_SpectrumScan, scan)), 0);
    const auto* read = record.as<TQX_SpectrumScan_s>();
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(read->SB1Length, 6);
    EXPECT_EQ(read->SB2Length, 3);
    ASSERT_EQ(read->N1, 2);
    EXPECT_EQ(read->Bands[0].Centre, 1575420U);
    ASSERT_EQ(read->Bands[1].M, 3);
    EXPECT_EQ(read->Bands[1].Bins[2].Power, -200);
    EXPECT_EQ(read->Bands[1].Bins[2].Jammer, 1);
}

/// Blocks of revisions that the first edition knows are as long as it makes them, whatever the
/// record holds in later fields.
TEST(LaterEdition, AdditionsAreWrittenForTheirRevisionsOnly)
{
    for (const unsigned revision : {0U, 1U, 2U}) {
        TQX_DOP2_s dop;
        TQX_init_DOP2(&dop);
        dop.Revision = static_cast<uint8_t>(revision);
        dop.RDOP = 2.5F;
        const std::vector<uint8_t> block = encoded(TQX_encode_DOP2, dop);
        EXPECT_EQ(block.size(), revision == 0 ? 40U : 44U);
        TQX_OwnedRecord record;
        ASSERT_GT(decode(record, block), 0);
        EXPECT_EQ(record.as<TQX_DOP2_s>()->RDOP, revision == 0 ? 0.0F : 2.5F);
    }
    for (const auto& [revision, bytes] : {std::pair(0U, 95U), {1U, 95U}, {2U, 96U}, {3U, 99U}}) {
        TQX_PVTGeodetic2_s position;
        TQX_init_PVTGeodetic2(&position);
        position.Revision = static_cast<uint8_t>(revision);
        position.ClockQuality = 0x1234;
        const std::vector<uint8_t> block = encoded(TQX_encode_PVTGeodetic2, position);
        EXPECT_EQ(block.size(), bytes) << revision;
        if (revision == 3) {
            EXPECT_EQ(block[95], 0x34);
        }
    }
    for (const auto& [revision, first] : {std::pair(0U, 20U), {1U, 20U}, {2U, 22U}}) {
        TQX_MeasEpoch2_s epoch;
        TQX_init_MeasEpoch2(&epoch);
        epoch.Revision = static_cast<uint8_t>(revision);
        TQX_append_MeasEpochChannelType1_Type2(TQX_append_MeasEpoch2_Type1(&epoch))->CN0 = 77;
        epoch.Type1[0].Multipath = -5;
        const std::vector<uint8_t> block = encoded(TQX_encode_MeasEpoch2, epoch);
        EXPECT_EQ(epoch.SB1Length, first);
        EXPECT_EQ(epoch.SB2Length, 12);
        EXPECT_EQ(block.size(), 20U + first + 12U);
        TQX_OwnedRecord record;
        ASSERT_GT(decode(record, block), 0);
        const auto* read = record.as<TQX_MeasEpoch2_s>();
        EXPECT_EQ(read->Type1[0].Multipath, revision == 2 ? -5 : 0);
        EXPECT_EQ(read->Type1[0].Type2[0].CN0, 77);
    }
}

TEST(LaterEdition, OldOwnersHoldNewSubBlocks)
{
    for (const unsigned revision : {1U, 2U}) {
        TQX_ReceiverStatus2_s status;
        TQX_init_ReceiverStatus2(&status);
        status.Revision = static_cast<uint8_t>(revision);
        TQX_append_ReceiverStatus2_AGCState(&status)->Gain = 40;
        TQX_append_ReceiverStatus2_Thermal(&status)->Heat = -7;
        TQX_OwnedRecord record;
        ASSERT_GT(decode(record, encoded(TQX_encode_ReceiverStatus2, status)), 0);
        const auto* read = record.as<TQX_ReceiverStatus2_s>();
        EXPECT_EQ(read->AGCState[0].Gain, 40);
        ASSERT_EQ(read->NThermal, revision == 2 ? 1 : 0);
        if (revision == 2) {
            EXPECT_EQ(read->Thermal[0].Heat, -7);
        }
    }
}

TEST(LaterEdition, ReservedBitsAndBytesMeanSomething)
{
    TQX_AttEuler1_s attitude;
    TQX_init_AttEuler1(&attitude);
    attitude.Latency = 0x0201;
    attitude.Reserved[0] = 3;
    attitude.Heading = 90;
    const std::vector<uint8_t> block = encoded(TQX_encode_AttEuler1, attitude);
    const int32_t reserved = 17; // three bytes in the first edition
    EXPECT_EQ(block[reserved], 1);
    EXPECT_EQ(block[reserved + 1], 2);
    EXPECT_EQ(block[reserved + 2], 3);

    TQX_MeasEpoch2_s epoch;
    TQX_init_MeasEpoch2(&epoch);
    epoch.Reserved = 9;
    TQX_MeasEpochChannelType1_s& channel = *TQX_append_MeasEpoch2_Type1(&epoch);
    channel.ObsInfo = 2;
    channel.Misc = 0xb0;
    TQX_OwnedRecord record;
    ASSERT_GT(decode(record, encoded(TQX_encode_MeasEpoch2, epoch)), 0);
    const auto* read = record.as<TQX_MeasEpoch2_s>();
    EXPECT_EQ(read->Batch, 9);
    EXPECT_EQ(read->Type1[0].Reserved1, 1);
    EXPECT_EQ(read->Type1[0].Replica, 1);
    EXPECT_EQ(read->Type1[0].Reserved, 0xb);
    EXPECT_EQ(read->Type1[0].Quality, 1);
}

TEST(LaterEdition, FactsKnowWhatWasAdded)
{
    const uint32_t scan = TQX_recordType(4301);
    const TQX_TypeLayout& layout = *TQX_layout(scan);
    ASSERT_NE(TQX_typeFacts(scan), nullptr);
    EXPECT_EQ(TQX_description(*TQX_typeFacts(scan)), "Spectrum of the antenna inputs");
    const auto window = static_cast<size_t>(rowOf(layout, "Window") - layout.fields);
    EXPECT_EQ(TQX_namedValues(TQX_fieldFacts(scan)[window])[1].name, "Hann");
    const TQX_TypeLayout& bin = *TQX_layout(scan + 2);
    const auto power = static_cast<size_t>(rowOf(bin, "Power") - bin.fields);
    EXPECT_EQ(TQX_unit(TQX_fieldFacts(scan + 2)[power]), "decibelm");

    const auto band =
        static_cast<size_t>(rowOf(*TQX_layout(scan + 1), "Antenna") - TQX_layout(scan + 1)->fields);
    EXPECT_EQ(TQX_namedValues(TQX_fieldFacts(scan + 1)[band])[3].name, "Aux3");
    for (const generator::RecordType& type : firstEdition().types)
        ASSERT_NE(TQX_typeFacts(static_cast<uint32_t>(type.record)), nullptr) << type.name;
}

} // namespace
