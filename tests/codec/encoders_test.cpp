// What is encoded decodes to the same, and what was decoded is written back byte for byte.

#include "Ancestors.h"
#include "FieldRoles.h"
#include "RandomBlock.h"
#include "RecordCompare.h"
#include "RecordFiller.h"
#include "RecordGuard.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace
{

using namespace Kor::MessageApi;

class Encoders : public testing::TestWithParam<const TQX_TypeLayout*>
{
};

TEST_P(Encoders, BringDecodedBytesBack)
{
    const TQX_TypeLayout& type = *GetParam();
    std::mt19937_64 random(type.recordType);
    for (unsigned round = 0; round < 12; ++round) {
        BlockOptions options;
        options.revision = round % (type.highestRevision + 2U);
        options.largestCount = 5;
        const std::vector<uint8_t> block = randomBlock(type, options, random);
        AnyRecord record;
        ASSERT_EQ(record.decode(block), static_cast<int32_t>(block.size() * 8));
        const uint32_t bitsBefore = record.as<KorcgHeader_s>().korcg_bits;
        std::vector<uint8_t> again(block.size());
        const auto size = static_cast<uint16_t>(again.size());
        EXPECT_LT(TQX_reencode(again.data(), static_cast<uint16_t>(size - 1), record.get()), 0);
        ASSERT_EQ(TQX_reencode(again.data(), size, record.get()), size * 8);
        EXPECT_EQ(record.as<KorcgHeader_s>().korcg_bits, bitsBefore);
        EXPECT_EQ(again, block);
    }
}

// Whether a cut block breaks decoding and encoding at the same field: not where decoding leaves out
// what encoding always writes, or where encoding fills entries up.
bool breaksAlike(const TQX_TypeLayout& type)
{
    return std::all_of(type.fields, type.fields + type.fieldCount,
                       [](const TQX_FieldLayout& field) {
                           if (holdsEntries(field)) {
                               return field.kind == TQX_FieldKind::Blocks &&
                                      breaksAlike(*TQX_layout(field.recordType));
                           }
                           return field.presence == TQX_Presence::Always || field.alwaysSent;
                       });
}

// Every buffer that is too small is refused, and nothing is written beyond it.
void expectRefused(const TQX_TypeLayout& type, AnyRecord& record, const std::vector<uint8_t>& bytes)
{
    constexpr uint8_t mark = 0x5a;
    std::vector<uint8_t> buffer(bytes.size());
    for (size_t size = 0; size < bytes.size(); size += size < 200 ? 1 : 7) {
        std::fill(buffer.begin() + static_cast<std::ptrdiff_t>(size), buffer.end(), mark);
        const int32_t result =
            type.encode(buffer.data(), static_cast<uint16_t>(size), record.get());
        ASSERT_LT(result, 0) << size;
        EXPECT_EQ(
            std::count(buffer.begin() + static_cast<std::ptrdiff_t>(size), buffer.end(), mark),
            static_cast<std::ptrdiff_t>(bytes.size() - size));
        if (!breaksAlike(type))
            continue;
        AnyRecord cut;
        uint32_t offset = 0;
        EXPECT_STREQ(
            TQX_errorName(result),
            TQX_errorName(decodeAlone(type, nullptr, bytes.data(), static_cast<uint16_t>(size),
                                      &offset, nullptr, 0, cut.get())))
            << size;
    }
}

TEST_P(Encoders, WriteWhatDecodersRead)
{
    const TQX_TypeLayout& type = *GetParam();
    std::mt19937_64 random(type.recordType + 1000U);
    for (unsigned round = 0; round < 12; ++round) {
        const unsigned revision = round % (type.highestRevision + 2U);
        AnyRecord source;
        type.init(source.get());
        fillRecord(type, source.get(), revision, {}, [&random](unsigned) { return random(); });
        std::vector<uint8_t> bytes(65535);
        const TQX_MainHeader_s& head = source.as<TQX_MainHeader_s>();
        const uint16_t number = head.ID;
        const int32_t bits = type.encode(bytes.data(), 65535, source.get());
        ASSERT_GT(bits, 0) << TQX_errorName(bits);
        EXPECT_EQ(head.ID, number);
        EXPECT_EQ(head.korcg_bits, static_cast<uint32_t>(bits));
        bytes.resize(static_cast<size_t>(bits) / 8);
        EXPECT_EQ(head.Length * 8, bits);

        AnyRecord decoded;
        const int32_t result = decoded.decode(bytes);
        ASSERT_GT(result, 0) << TQX_errorName(result);
        EXPECT_LE(result, bits);
        EXPECT_EQ(firstDifference(type, decoded.get(), source.get(), Compared::WireFields), "");
        const TQX_MainHeader_s& read = decoded.as<TQX_MainHeader_s>();
        EXPECT_EQ(read.Length, head.Length);
        EXPECT_EQ(read.CRC, head.CRC);
        EXPECT_EQ(read.Revision, revision);
        if (round < 4)
            expectRefused(type, source, bytes);
    }
}

INSTANTIATE_TEST_SUITE_P(AllTypes, Encoders, testing::ValuesIn(mainTypes()),
                         [](const auto& row) { return std::string(row.param->name); });

} // namespace
