#include "korcg_load.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace
{

using Bytes = std::array<uint8_t, 8>;

constexpr Bytes testBytes = {0xf1, 0x32, 0x54, 0x76, 0x98, 0xba, 0xdc, 0xfe};

// Evaluated by the compiler, which follows the language and not the host's byte order.
static_assert(korcg_load_u16(testBytes.data()) == 0x32f1);
static_assert(korcg_load_u32(testBytes.data()) == 0x765432f1);
static_assert(korcg_load_u64(testBytes.data()) == 0xfedcba98765432f1);

TEST(Load, LowestByteComesFirst)
{
    EXPECT_EQ(korcg_load_u8(testBytes.data()), 0xf1);
    EXPECT_EQ(korcg_load_i8(testBytes.data()), -0x0f);
    EXPECT_EQ(korcg_load_u16(testBytes.data()), 0x32f1);
    EXPECT_EQ(korcg_load_i16(testBytes.data() + 6), -0x0124);
    EXPECT_EQ(korcg_load_u32(testBytes.data()), 0x765432f1u);
    EXPECT_EQ(korcg_load_i32(testBytes.data() + 4), -0x01234568);
    EXPECT_EQ(korcg_load_u64(testBytes.data()), 0xfedcba98765432f1u);
    EXPECT_EQ(korcg_load_i64(testBytes.data()), -0x0123456789abcd0f);
}

// Reading bytes in reversed order must give the value with its bytes swapped, computed here
// arithmetically: a load that depends on the host's byte order gives equal values for both.
TEST(Load, ReversedBytesGiveTheSwappedValue)
{
    Bytes reversed = testBytes;
    std::reverse(reversed.begin(), reversed.end());
    uint64_t swapped = 0;
    for (uint64_t rest = korcg_load_u64(testBytes.data()), i = 0; i < 8; ++i, rest /= 256) {
        swapped = swapped * 256 + rest % 256;
    }
    EXPECT_EQ(korcg_load_u64(reversed.data()), swapped);
    EXPECT_EQ(korcg_load_u32(reversed.data() + 4), swapped >> 32);
    EXPECT_EQ(korcg_load_u16(reversed.data() + 6), swapped >> 48);

    Bytes stored;
    korcg_store_u64(stored.data(), swapped);
    EXPECT_EQ(stored, reversed);
}

TEST(Load, FloatsKeepTheirBits)
{
    const Bytes pi = {0x18, 0x2d, 0x44, 0x54, 0xfb, 0x21, 0x09, 0x40};
    EXPECT_EQ(korcg_load_f64(pi.data()), 3.141592653589793);
    const Bytes half = {0x00, 0x00, 0x00, 0xbf};
    EXPECT_EQ(korcg_load_f32(half.data()), -0.5f);

    const Bytes quietNaNs = {0x34, 0x12, 0xc0, 0x7f, 0x01, 0x00, 0xf8, 0xff};
    Bytes stored = {};
    korcg_store_f32(stored.data(), korcg_load_f32(quietNaNs.data()));
    EXPECT_TRUE(std::equal(quietNaNs.begin(), quietNaNs.begin() + 4, stored.begin()));
    korcg_store_f64(stored.data(), korcg_load_f64(quietNaNs.data()));
    EXPECT_EQ(stored, quietNaNs);
}

template<typename T>
void expectStoreUndoesLoad(T (*load)(const uint8_t*), void (*store)(uint8_t*, T))
{
    for (size_t start = 0; start + sizeof(T) <= testBytes.size(); ++start) {
        Bytes target = {};
        store(target.data() + start, load(testBytes.data() + start));
        for (size_t i = 0; i < target.size(); ++i) {
            const bool inside = i >= start && i < start + sizeof(T);
            EXPECT_EQ(target[i], inside ? testBytes[i] : 0) << sizeof(T) << " at " << start;
        }
    }
}

TEST(Store, UndoesLoadAndTouchesNothingElse)
{
    expectStoreUndoesLoad(korcg_load_u8, korcg_store_u8);
    expectStoreUndoesLoad(korcg_load_i8, korcg_store_i8);
    expectStoreUndoesLoad(korcg_load_u16, korcg_store_u16);
    expectStoreUndoesLoad(korcg_load_i16, korcg_store_i16);
    expectStoreUndoesLoad(korcg_load_u32, korcg_store_u32);
    expectStoreUndoesLoad(korcg_load_i32, korcg_store_i32);
    expectStoreUndoesLoad(korcg_load_u64, korcg_store_u64);
    expectStoreUndoesLoad(korcg_load_i64, korcg_store_i64);
    expectStoreUndoesLoad(korcg_load_f32, korcg_store_f32);
    expectStoreUndoesLoad(korcg_load_f64, korcg_store_f64);
}

} // namespace
