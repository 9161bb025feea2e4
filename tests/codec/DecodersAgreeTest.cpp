// Every decoder against a reference that shares nothing with it but the layout table.

#include "ExactDecoder.h"
#include "RandomBlock.h"
#include "RecordGuard.h"
#include "Reference.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace
{

using namespace Kor::MessageApi;

constexpr int blocksPerType = 12;

uint64_t masked(const TQX_FieldLayout& field, uint64_t value)
{
    return value & (~uint64_t{0} >> (64U - field.width));
}

uint64_t bitsOf(const TQX_FieldLayout& field, const void* record, uint32_t index)
{
    return TQX_isSigned(field) ? static_cast<uint64_t>(TQX_signedValue(field, record, index))
                               : TQX_unsignedValue(field, record, index);
}

// Compares every wire field and every member split from it.
void expectEqual(const reference::Entry& entry, const void* record, const std::string& where)
{
    const TQX_TypeLayout& type = *TQX_layout(entry.recordType);
    const auto& head = *static_cast<const KorcgHeader_s*>(record);
    ASSERT_EQ(head.korcg_type, entry.recordType) << where;
    EXPECT_EQ(head.korcg_bits, entry.bits) << where;
    for (int row = 0; row < type.fieldCount; ++row) {
        const TQX_FieldLayout& field = type.fields[row];
        const std::string name = where + "::" + field.name;
        const TQX_FieldLayout& wire =
            field.kind == TQX_FieldKind::Bits ? type.fields[field.parent] : field;
        const auto found = entry.fields.find(wire.name);
        if (found == entry.fields.end() || field.kind == TQX_FieldKind::Derived)
            continue;
        // The bytes behind the last whole word of a payload are no element of it.
        const size_t elements = field.kind == TQX_FieldKind::Bits
                                    ? std::min<size_t>(found->second.values.size(),
                                                       TQX_elementCount(type, field, record))
                                    : found->second.values.size();
        for (uint32_t i = 0; i < elements; ++i) {
            const uint64_t expected = masked(field, found->second.values[i] >> field.shift);
            EXPECT_EQ(masked(field, bitsOf(field, record, i)), expected) << name << " " << i;
            if (field.kind == TQX_FieldKind::Bits && TQX_isSigned(field)) {
                const int64_t sign = int64_t{1} << (field.width - 1);
                EXPECT_EQ(TQX_signedValue(field, record, i),
                          (static_cast<int64_t>(expected) ^ sign) - sign)
                    << name;
            }
        }
        for (uint32_t i = 0; i < found->second.entries.size(); ++i) {
            const void* child = TQX_element(field, record, i);
            EXPECT_EQ(static_cast<const KorcgHeader_s*>(child)->korcg_father, record) << name;
            expectEqual(found->second.entries[i], child, name);
        }
    }
}

// Compares every member, those included that no byte of the block is behind.
void expectEqualMembers(const TQX_TypeLayout& type, const void* one, const void* other)
{
    for (int row = 0; row < type.fieldCount; ++row) {
        const TQX_FieldLayout& field = type.fields[row];
        const std::string name = std::string(type.name) + "::" + field.name;
        const bool counted = field.count >= 0 || (field.kind == TQX_FieldKind::Bits &&
                                                  type.fields[field.parent].count >= 0);
        // Of a counted field that is not there only the ends are defined.
        if (counted && !TQX_isPresent(type, field, one))
            continue;
        const uint32_t count = counted ? TQX_elementCount(type, field, one) : field.elements;
        for (uint32_t i = 0; i < count; ++i) {
            const void* element = TQX_element(field, one, i);
            const void* same = TQX_element(field, other, i);
            if (field.type == TQX_MemberType::Record)
                expectEqualMembers(*TQX_layout(field.recordType), element, same);
            else
                EXPECT_EQ(std::memcmp(element, same, TQX_elementSize(field)), 0)
                    << name << " " << i;
        }
    }
}

void expectSame(const TQX_TypeLayout& type, const std::vector<uint8_t>& bytes)
{
    const reference::Outcome expected = reference::decode(type, bytes);
    AnyRecord fast;
    EXPECT_EQ(fast.decode(bytes), expected.result)
        << type.name << " of " << bytes.size() << " bytes: " << TQX_errorName(expected.result);
    AnyRecord exact;
    uint32_t offset = 0;
    EXPECT_EQ(decodeExactly(type, nullptr, bytes.data(), static_cast<uint16_t>(bytes.size()),
                            &offset, nullptr, 0, exact.get()),
              expected.result);
    if (expected.result < 0)
        return;
    EXPECT_EQ(offset, static_cast<uint32_t>(expected.result));
    expectEqual(expected.block, fast.get(), type.name);
    expectEqual(expected.block, exact.get(), std::string("exact ") + type.name);
    expectEqualMembers(type, fast.get(), exact.get());
}

class DecodersAgree : public testing::TestWithParam<const TQX_TypeLayout*>
{
};

TEST_P(DecodersAgree, OnEveryRevisionAndOnDamage)
{
    const TQX_TypeLayout& type = *GetParam();
    std::mt19937_64 random(type.recordType);
    for (int round = 0; round < blocksPerType; ++round) {
        BlockOptions options;
        options.revision = static_cast<unsigned>(round) % (type.highestRevision + 2U);
        options.largestCount = round % 4 == 0 ? 30 : 3;
        options.extraBytes = round % 3 == 0 ? static_cast<unsigned>(random() % 6) : 0;
        std::vector<uint8_t> block = randomBlock(type, options, random);
        expectSame(type, block);
        for (int flip = 0; flip < 20; ++flip) {
            std::vector<uint8_t> damaged = block;
            const auto at = static_cast<size_t>(6 + random() % (block.size() - 6));
            damaged[at] = static_cast<uint8_t>(random());
            expectSame(type, damaged);
        }
    }
}

TEST_P(DecodersAgree, OnEveryTruncation)
{
    const TQX_TypeLayout& type = *GetParam();
    std::mt19937_64 random(type.recordType + 1000U);
    for (unsigned revision = 0; revision <= type.highestRevision; ++revision) {
        std::vector<uint8_t> block = randomBlock(type, {revision, 3, revision}, random);
        while (block.size() > 7) {
            block.pop_back();
            expectSame(type, block);
        }
    }
}

TEST_P(DecodersAgree, AndEncodingBringsTheBytesBack)
{
    const TQX_TypeLayout& type = *GetParam();
    std::mt19937_64 random(type.recordType + 2000U);
    for (int round = 0; round < blocksPerType; ++round) {
        const unsigned revision = static_cast<unsigned>(round) % (type.highestRevision + 1U);
        const std::vector<uint8_t> block = randomBlock(type, {revision, 5, 0}, random);
        AnyRecord record;
        ASSERT_EQ(record.decode(block), static_cast<int32_t>(block.size() * 8)) << type.name;
        std::vector<uint8_t> again(block.size());
        const uint32_t bitsBefore = record.as<KorcgHeader_s>().korcg_bits;
        ASSERT_EQ(TQX_reencode(again.data(), static_cast<uint16_t>(again.size()), record.get()),
                  static_cast<int32_t>(block.size() * 8))
            << type.name;
        EXPECT_EQ(record.as<KorcgHeader_s>().korcg_bits, bitsBefore);
        EXPECT_EQ(again, block) << type.name;
    }
}

INSTANTIATE_TEST_SUITE_P(AllTypes, DecodersAgree, testing::ValuesIn(mainTypes()),
                         [](const auto& row) { return std::string(row.param->name); });

} // namespace
