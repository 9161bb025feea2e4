// Every decoder against a reference that shares nothing with it but the layout table.

#include "Ancestors.h"
#include "ExactDecoder.h"
#include "FieldRoles.h"
#include "RandomBlock.h"
#include "RecordCompare.h"
#include "RecordGuard.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

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

bool isText(const TQX_FieldLayout& field)
{
    return field.kind == TQX_FieldKind::Text || field.kind == TQX_FieldKind::CountedText;
}

uint64_t initialValue(const TQX_TypeLayout& type, const TQX_FieldLayout& field)
{
    if (type.linksToMain == 0 && field.wireOffset >= 0 && field.wireOffset < 2)
        return field.wireOffset == 0 ? '$' : '@';
    return field.kind == TQX_FieldKind::Text ? ' ' : 0;
}

// What was never read has its starting value; of counted fields only the first element has one.
void expectInitial(const TQX_TypeLayout& type, const TQX_FieldLayout& field, const void* record,
                   const std::string& name)
{
    const uint32_t elements = field.count >= 0 ? 1 : field.elements;
    for (uint32_t i = 0; i < elements && !holdsEntries(field); ++i) {
        EXPECT_EQ(TQX_unsignedValue(field, record, i), initialValue(type, field))
            << name << " " << i;
    }
}

// What a bit range has that sums up others of its word.
uint64_t summaryOf(const TQX_TypeLayout& type, const TQX_FieldLayout& field, uint64_t word)
{
    std::vector<uint64_t> values;
    for (int i = 0; i < 32; ++i) {
        if ((field.summed >> i & 1U) != 0) {
            const TQX_FieldLayout& part = type.fields[field.parent + 1 + i];
            values.push_back(masked(part, word >> part.shift));
        }
    }
    const auto zeros = std::count(values.begin(), values.end(), uint64_t{0});
    const auto all = static_cast<std::ptrdiff_t>(values.size());
    EXPECT_NE(all, 0) << field.name;
    switch (field.summary) {
    case TQX_Summary::Any:
        return zeros < all;
    case TQX_Summary::All:
        return zeros == 0;
    case TQX_Summary::Neither:
        return zeros == all;
    default:
        return *std::min_element(values.begin(), values.end());
    }
}

void expectEqual(const reference::Entry& entry, const void* record, const std::string& where);

// Compares one wire field, or a member split from it, with what was read of the field.
void expectEqualField(const TQX_TypeLayout& type, const TQX_FieldLayout& field,
                      const reference::Content& read, const void* record, const std::string& name)
{
    // The bytes after the last whole word of a payload are not an element of it.
    const size_t elements =
        field.kind == TQX_FieldKind::Bits
            ? std::min<size_t>(read.values.size(), TQX_elementCount(type, field, record))
            : read.values.size();
    for (uint32_t i = 0; i < elements; ++i) {
        const uint64_t expected = field.summary == TQX_Summary::None
                                      ? masked(field, read.values[i] >> field.shift)
                                      : summaryOf(type, field, read.values[i]);
        EXPECT_EQ(masked(field, bitsOf(field, record, i)), expected) << name << " " << i;
        if (field.kind == TQX_FieldKind::Bits && TQX_isSigned(field)) {
            const int64_t sign = int64_t{1} << (field.width - 1);
            EXPECT_EQ(TQX_signedValue(field, record, i),
                      (static_cast<int64_t>(expected) ^ sign) - sign)
                << name;
        }
    }
    if (isText(field)) {
        EXPECT_EQ(TQX_unsignedValue(field, record, static_cast<uint32_t>(elements)), 0U) << name;
    }
    for (uint32_t i = 0; i < read.entries.size(); ++i) {
        const void* child = TQX_element(field, record, i);
        EXPECT_EQ(static_cast<const KorcgHeader_s*>(child)->korcg_father, record) << name;
        expectEqual(read.entries[i], child, name);
    }
}

void expectEqual(const reference::Entry& entry, const void* record, const std::string& where)
{
    const TQX_TypeLayout& type = *TQX_layout(entry.recordType);
    const auto& head = *static_cast<const KorcgHeader_s*>(record);
    ASSERT_EQ(head.korcg_type, entry.recordType) << where;
    EXPECT_EQ(head.korcg_bits, entry.bits) << where;
    for (int row = 0; row < type.fieldCount; ++row) {
        const TQX_FieldLayout& field = type.fields[row];
        if (field.kind == TQX_FieldKind::Derived)
            continue;
        const std::string name = where + "::" + field.name;
        const TQX_FieldLayout& wire =
            field.kind == TQX_FieldKind::Bits ? type.fields[field.parent] : field;
        const auto read = entry.fields.find(wire.name);
        if (read != entry.fields.end()) {
            expectEqualField(type, field, read->second, record, name);
        } else if (field.kind != TQX_FieldKind::Bits) {
            expectInitial(type, field, record, name);
        }
    }
    if (type.linksToMain == 0) {
        const auto time = entry.fields.find("TOWc");
        EXPECT_EQ(static_cast<const TQX_MainHeader_s*>(record)->TOWc,
                  time == entry.fields.end() ? 0 : time->second.values.front())
            << where;
    }
}

// A context from which the block's TOW is sometimes just, and sometimes just not, a new week.
TQX_Context_s contextBefore(const std::vector<uint8_t>& bytes, std::mt19937_64& random)
{
    TQX_Context_s context;
    TQX_init_context(&context);
    context.weekCounter = static_cast<uint8_t>(random() % 2 == 0 ? 255 : random());
    uint32_t tow = 0;
    for (size_t i = 0; i < 4 && bytes.size() >= 12; ++i)
        tow |= uint32_t{bytes[8 + i]} << (8 * i);
    context.lastTOW = tow + 172800000U + static_cast<uint32_t>(random() % 3) - 1U;
    return context;
}

struct Decoded {
    AnyRecord record;
    int32_t result = 0;
    uint32_t offset = 0;
    TQX_Context_s context = {};
};

void expectOutcome(const TQX_TypeLayout& type, const reference::Outcome& expected,
                   const reference::Clock* clock, Decoded& decoded, const std::string& how)
{
    EXPECT_EQ(decoded.result, expected.result) << how << " " << TQX_errorName(expected.result);
    EXPECT_EQ(decoded.offset, expected.offset) << how;
    if (clock != nullptr) {
        EXPECT_EQ(decoded.context.weekCounter, clock->rollovers) << how;
        EXPECT_EQ(decoded.context.lastTOW, clock->last) << how;
    }
    if (decoded.result == expected.result)
        expectEqual(expected.block, decoded.record.get(), how + " " + type.name);
}

// Both decoders, with a context and, half of the time, without.
void expectSame(const TQX_TypeLayout& type, const std::vector<uint8_t>& bytes,
                std::mt19937_64& random)
{
    SCOPED_TRACE(std::string(type.name) + " of " + std::to_string(bytes.size()) + " bytes");
    const TQX_Context_s context = contextBefore(bytes, random);
    reference::Clock clock = {context.weekCounter, context.lastTOW};
    const bool follows = random() % 2 == 0;
    reference::Start start;
    start.clock = follows ? &clock : nullptr;
    const reference::Outcome expected = reference::decode(type, bytes, start);

    Decoded fast;
    fast.context = context;
    fast.result = fast.record.decode(bytes, follows ? &fast.context : nullptr);
    fast.offset = expected.offset;
    expectOutcome(type, expected, start.clock, fast, "straight");
    Decoded exact{AnyRecord(0x5a)};
    exact.context = context;
    exact.result = decodeExactly(type, follows ? &exact.context : nullptr, bytes.data(),
                                 static_cast<uint16_t>(bytes.size()), &exact.offset, nullptr, 0,
                                 exact.record.get());
    expectOutcome(type, expected, start.clock, exact, "exact");
    EXPECT_EQ(firstDifference(type, fast.record.get(), exact.record.get(), Compared::Reachable),
              "");
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
        options.overrun = round == blocksPerType - 1;
        std::vector<uint8_t> block = randomBlock(type, options, random);
        expectSame(type, block, random);
        for (int flip = 0; flip < 20; ++flip) {
            std::vector<uint8_t> damaged = block;
            const auto at = static_cast<size_t>(6 + random() % (block.size() - 6));
            damaged[at] = static_cast<uint8_t>(random());
            expectSame(type, damaged, random);
        }
    }
}

TEST_P(DecodersAgree, OnEveryTruncation)
{
    const TQX_TypeLayout& type = *GetParam();
    std::mt19937_64 random(type.recordType + 1000U);
    for (unsigned revision = 0; revision <= type.highestRevision; ++revision) {
        BlockOptions options;
        options.revision = revision;
        options.largestCount = 3;
        options.extraBytes = revision;
        std::vector<uint8_t> block = randomBlock(type, options, random);
        // Two days later the time of the week is small again.
        if (random() % 2 == 0)
            block[11] = 0xff;
        while (block.size() > 7) {
            block.pop_back();
            expectSame(type, block, random);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(AllTypes, DecodersAgree, testing::ValuesIn(mainTypes()),
                         [](const auto& row) { return std::string(row.param->name); });

// Explicit lengths around what is consumed, around the longest result, and where offsets wrap.
uint32_t anyLength(int32_t consumed, std::mt19937_64& random)
{
    const auto bits = static_cast<uint32_t>(std::max(consumed, 16));
    const uint32_t lengths[] = {0,          1,           bits - 8,    bits - 1,
                                bits,       bits + 1,    bits + 24,   0x20000000,
                                0x7fffffff, 0x80000000U, 0xffffffffU, 8};
    return lengths[static_cast<size_t>(random() % std::size(lengths))];
}

// A decoder of any type, called as the decoder of its owner would, or a stranger.
void expectSameAlone(const TQX_TypeLayout& type, std::mt19937_64& random)
{
    BlockOptions options;
    options.revision = static_cast<unsigned>(random() % 4);
    options.extraBytes = static_cast<unsigned>(random() % 3);
    options.overrun = random() % 8 == 0;
    reference::Start start;
    start.offset = static_cast<uint32_t>(random() % 2 == 0 ? 8 * (random() % 4) : random() % 64);
    std::vector<uint8_t> bytes(start.offset / 8);
    const std::vector<uint8_t> content = type.linksToMain == 0 ? randomBlock(type, options, random)
                                                               : randomEntry(type, options, random);
    bytes.insert(bytes.end(), content.begin(), content.end());
    bytes.resize(static_cast<size_t>(random() % 2 == 0 ? bytes.size() + random() % 9
                                                       : random() % bytes.size() + 1));

    Ancestors ancestors(type, options.revision, static_cast<unsigned>(random() % 3 * 20));
    Ancestors stranger(*TQX_layout(1), 0, 0);
    const bool inside = type.linksToMain != 0 || random() % 2 == 0;
    start.above = inside ? &ancestors.surroundings() : nullptr;
    start.length = anyLength(reference::decode(type, bytes, start).result, random);
    const TQX_Context_s context = contextBefore(content, random);
    reference::Clock clock = {context.weekCounter, context.lastTOW};
    start.clock = &clock;
    const reference::Outcome expected = reference::decode(type, bytes, start);

    SCOPED_TRACE(std::string(type.name) + " from bit " + std::to_string(start.offset) + " of " +
                 std::to_string(bytes.size()) + " bytes, length " + std::to_string(start.length));
    Decoded decoded;
    decoded.context = context;
    decoded.offset = start.offset;
    void* father =
        !inside ? nullptr : (type.linksToMain == 0 ? stranger.father() : ancestors.father());
    decoded.result =
        decodeAlone(type, &decoded.context, bytes.data(), static_cast<uint16_t>(bytes.size()),
                    &decoded.offset, father, start.length, decoded.record.get());
    expectOutcome(type, expected, start.clock, decoded, "alone");
    EXPECT_EQ(decoded.record.as<KorcgHeader_s>().korcg_father, father);
}

TEST(DecodersAlone, TakeAnyOffsetParentAndLength)
{
    std::mt19937_64 random(1);
    for (const TQX_TypeLayout* type : allTypes()) {
        for (int round = 0; round < 60; ++round)
            expectSameAlone(*type, random);
    }
}

} // namespace
