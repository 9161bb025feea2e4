// Sub-block arrays of any origin can be appended to, released, used again and destroyed; and what
// hostile counts and lengths make a decoder allocate is bounded. Leaks and double releases are the
// sanitizers' to find.

#include "FieldRoles.h"
#include "RandomBlock.h"
#include "RecordCompare.h"
#include "RecordFiller.h"
#include "RecordGuard.h"

#include <gtest/gtest.h>

#include <malloc.h>

#include <algorithm>

// Only a build with a sanitizer has it; the C library then counts nothing.
extern "C" size_t __sanitizer_get_current_allocated_bytes() __attribute__((weak));

namespace
{

using namespace Kor::MessageApi;

bool ownsArrays(const TQX_TypeLayout& type)
{
    return type.release != nullptr;
}

// Appends to the nested arrays of the first element, to the array, and to those of the new element.
void appendEverywhere(const TQX_TypeLayout& type, void* record)
{
    for (int row = 0; row < type.fieldCount; ++row) {
        const TQX_FieldLayout& field = type.fields[row];
        if (field.kind != TQX_FieldKind::Blocks)
            continue;
        const TQX_TypeLayout& sub = *TQX_layout(field.recordType);
        const uint32_t count = TQX_elementCount(type, field, record);
        if (count != 0)
            appendEverywhere(sub, TQX_element(field, record, 0));
        void* element = field.append(record);
        EXPECT_EQ(element, TQX_element(field, record, count));
        EXPECT_EQ(static_cast<KorcgHeader_s*>(element)->korcg_father, record);
        EXPECT_EQ(static_cast<KorcgHeader_s*>(element)->korcg_type, field.recordType);
        EXPECT_EQ(TQX_elementCount(type, field, record), count + 1);
        appendEverywhere(sub, element);
        field.append(record);
    }
}

// Every element of `before` is unchanged in `after`, which has more.
void expectKept(const TQX_TypeLayout& type, const void* before, const void* after)
{
    for (int row = 0; row < type.fieldCount; ++row) {
        const TQX_FieldLayout& field = type.fields[row];
        if (field.kind != TQX_FieldKind::Blocks)
            continue;
        const TQX_TypeLayout& sub = *TQX_layout(field.recordType);
        const uint32_t count = TQX_elementCount(type, field, before);
        EXPECT_EQ(TQX_elementCount(type, field, after), count + 2) << type.name;
        for (uint32_t i = 0; i < count; ++i) {
            const void* one = TQX_element(field, before, i);
            const void* other = TQX_element(field, after, i);
            // To the first element's own arrays something was appended.
            if (i == 0 && ownsArrays(sub)) {
                expectKept(sub, one, other);
            } else {
                EXPECT_EQ(firstDifference(sub, one, other, Compared::Reachable), "");
            }
        }
    }
}

TEST(Arrays, OfDecodedBlocksCanBeAppendedTo)
{
    std::mt19937_64 random(1);
    for (const TQX_TypeLayout* type : mainTypes()) {
        if (!ownsArrays(*type))
            continue;
        SCOPED_TRACE(type->name);
        for (unsigned round = 0; round < 20; ++round) {
            BlockOptions options;
            options.revision = round % (type->highestRevision + 1U);
            const std::vector<uint8_t> block = randomBlock(*type, options, random);
            AnyRecord untouched;
            AnyRecord record;
            ASSERT_GT(untouched.decode(block), 0);
            ASSERT_GT(record.decode(block), 0);
            appendEverywhere(*type, record.get());
            expectKept(*type, untouched.get(), record.get());
            TQX_release(record.get());
            TQX_release(record.get());
            for (int row = 0; row < type->fieldCount; ++row) {
                if (type->fields[row].kind == TQX_FieldKind::Blocks) {
                    EXPECT_EQ(TQX_element(type->fields[row], record.get()), nullptr);
                    EXPECT_EQ(TQX_elementCount(*type, type->fields[row], record.get()), 0U);
                }
            }
            appendEverywhere(*type, record.get());
        }
    }
}

// A record that a decoder filled is copied byte for byte, and the copy owns the arrays.
TEST(Arrays, GoWithTheRecord)
{
    std::mt19937_64 random(1);
    AnyRecord area;
    BlockOptions options;
    options.largestCount = 9;
    ASSERT_GT(area.decode(randomBlock(*TQX_layout(371), options, random)), 0);
    auto copy = std::make_unique<TQX_MeasEpoch2_s>();
    std::memcpy(static_cast<void*>(copy.get()), area.get(), sizeof *copy);
    TQX_init_MeasEpoch2(&area.as<TQX_MeasEpoch2_s>());
    appendEverywhere(*TQX_layout(371), copy.get());
    copy.reset();
    TQX_MeasEpoch2_s empty;
    EXPECT_EQ(empty.Type1, nullptr);
}

size_t allocatedBytes()
{
    if (__sanitizer_get_current_allocated_bytes != nullptr)
        return __sanitizer_get_current_allocated_bytes();
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

// What decoding a block of a given size may allocate: the entries that the bytes can hold, and in
// each level the array that was announced and turned out not to be there.
size_t largestAllocation(const TQX_TypeLayout& type, size_t bytes, size_t owners = 1)
{
    constexpr size_t overhead = 64; // of an allocation
    size_t sum = 0;
    for (int row = 0; row < type.fieldCount; ++row) {
        const TQX_FieldLayout& field = type.fields[row];
        if (!holdsEntries(field))
            continue;
        const TQX_TypeLayout& sub = *TQX_layout(field.recordType);
        size_t read = owners;
        if (field.kind == TQX_FieldKind::Blocks) {
            const unsigned countBits = 8 * TQX_elementSize(type.fields[field.count]);
            const size_t announced = (size_t{1} << countBits) - 1;
            read = std::min(announced * owners, bytes / TQX_entrySize(field.recordType, 0));
            sum += (read + announced) * sub.recordSize + owners * overhead;
        }
        sum += largestAllocation(sub, bytes, read);
    }
    return sum;
}

TEST(Arrays, OfHostileBlocksAreBounded)
{
    std::mt19937_64 random(1);
    size_t most = 0;
    for (const TQX_TypeLayout* type : mainTypes()) {
        for (int round = 0; round < 24; ++round) {
            std::vector<uint8_t> bytes(65535);
            const uint8_t fillings[] = {0, 1, 0x7f, 0xff};
            for (uint8_t& byte : bytes)
                byte = round < 16 ? fillings[round % 4] : static_cast<uint8_t>(random());
            bytes[4] = static_cast<uint8_t>(type->blockNumber);
            bytes[5] = static_cast<uint8_t>(type->blockNumber >> 8U | (random() & 7U) << 5U);
            // Counts at their largest, lengths at their smallest and largest.
            for (int row = 0; row < type->fieldCount && round % 8 < 4; ++row) {
                if (type->fields[row].wireOffset < 0) {
                    continue;
                } else if (const FieldRole& role = roleOf(*type, row); role.counted != nullptr) {
                    bytes[static_cast<size_t>(type->fields[row].wireOffset)] = 0xff;
                } else if (role.sized != nullptr) {
                    bytes[static_cast<size_t>(type->fields[row].wireOffset)] =
                        static_cast<uint8_t>(random() % 2 * 0xff);
                }
            }
            AnyRecord record;
            const size_t before = allocatedBytes();
            record.decode(bytes);
            const size_t held = allocatedBytes() - before;
            most = std::max(most, held);
            EXPECT_LE(held, largestAllocation(*type, bytes.size())) << type->name << " " << round;
        }
    }
    // The counter counts.
    EXPECT_GT(most, 100000U);
    EXPECT_LT(most, 16000000U);
}

} // namespace
