#include "korcg_crc.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace
{

using Bytes = std::vector<uint8_t>;

Bytes randomBytes(size_t size)
{
    static std::mt19937 random(4007);
    Bytes bytes(size);
    std::generate(bytes.begin(), bytes.end(), [] { return static_cast<uint8_t>(random()); });
    return bytes;
}

/// The definition, bit by bit.
uint16_t divide(const uint8_t* data, size_t size, uint16_t start = 0)
{
    unsigned crc = start;
    for (size_t i = 0; i < size * 8; ++i) {
        const unsigned bit = data[i / 8] >> (7 - i % 8) & 1u;
        const bool carry = ((crc >> 15) ^ bit) != 0;
        crc = (crc << 1 & 0xffff) ^ (carry ? 0x1021 : 0);
    }
    return static_cast<uint16_t>(crc);
}

std::vector<korcg_CrcMethod_s> methods()
{
    const korcg_CrcMethod_s* first;
    const size_t count = korcg_crc16_methods(&first);
    return {first, first + count};
}

TEST(Crc, KnownValues)
{
    const Bytes digits = {'1', '2', '3', '4', '5', '6', '7', '8', '9'};
    const uint8_t one = 1;
    const uint8_t ones = 0xff;
    ASSERT_GE(methods().size(), 2u);
    for (const korcg_CrcMethod_s& method : methods()) {
        EXPECT_EQ(method.run(digits.data(), digits.size(), 0), 0x31c3) << method.name;
        EXPECT_EQ(method.run(&one, 1, 0), 0x1021) << method.name;
        EXPECT_EQ(method.run(&ones, 1, 0), 0x1ef0) << method.name;
        EXPECT_EQ(method.run(&one, 0, 0), 0) << method.name;
        EXPECT_EQ(method.run(&one, 0, 0x1234), 0x1234) << method.name;
    }
}

// The bytes end where their allocation ends, so that a sanitizer sees reads beyond them.
TEST(Crc, AllMethodsAgreeAtEveryLength)
{
    for (size_t size = 0; size <= 1100; ++size) {
        const Bytes bytes = randomBytes(size);
        for (const uint16_t start : {uint16_t{0}, uint16_t{0xffff}, uint16_t{0x1d0f}}) {
            const uint16_t expected = divide(bytes.data(), size, start);
            EXPECT_EQ(korcg_crc16_bytes(bytes.data(), size, start), expected) << size;
            for (const korcg_CrcMethod_s& method : methods()) {
                EXPECT_EQ(method.run(bytes.data(), size, start), expected)
                    << method.name << ", " << size << " bytes, start " << start;
            }
        }
    }
}

TEST(Crc, AllMethodsAgreeAtEveryAlignment)
{
    const Bytes bytes = randomBytes(64 + 600);
    for (size_t shift = 0; shift < 64; ++shift) {
        for (const size_t size : {1u, 15u, 47u, 63u, 64u, 255u, 256u, 257u, 500u, 512u, 600u}) {
            const uint16_t expected = divide(bytes.data() + shift, size);
            for (const korcg_CrcMethod_s& method : methods()) {
                EXPECT_EQ(method.run(bytes.data() + shift, size, 0), expected)
                    << method.name << ", " << size << " bytes at " << shift;
            }
        }
    }
}

TEST(Crc, LongestBlock)
{
    const Bytes bytes = randomBytes(0xffff);
    const uint16_t expected = divide(bytes.data(), bytes.size());
    for (const korcg_CrcMethod_s& method : methods()) {
        EXPECT_EQ(method.run(bytes.data(), bytes.size(), 0), expected) << method.name;
    }
}

TEST(CrcCombine, IsTheChecksumOfBothParts)
{
    const Bytes bytes = randomBytes(70000);
    const uint16_t whole = divide(bytes.data(), bytes.size());
    for (size_t split = 0; split <= bytes.size(); split += split < 700 ? 1 : 1009) {
        const size_t rest = bytes.size() - split;
        const uint16_t first = korcg_crc16_bytes(bytes.data(), split);
        const uint16_t second = korcg_crc16_bytes(bytes.data() + split, rest);
        for (const korcg_CrcMethod_s& method : methods()) {
            EXPECT_EQ(method.combine(first, second, rest), whole) << method.name << " " << split;
            EXPECT_EQ(method.combine(first, whole, rest), second) << method.name << " " << split;
        }
    }
}

// Doubling the distance step by step reaches lengths that no test could fill with bytes.
TEST(CrcCombine, LengthMayBeAnything)
{
    for (const unsigned power : {0x0001u, 0x8000u, 0x1021u, 0xbeefu}) {
        const auto crc = static_cast<uint16_t>(power);
        for (size_t length = SIZE_MAX / 2; length > 0; length /= 2) {
            const uint16_t half = korcg_crc16_combine(crc, 0, length);
            EXPECT_EQ(korcg_crc16_combine(half, 0, length), korcg_crc16_combine(crc, 0, 2 * length))
                << length;
        }
    }
}

TEST(CrcOfBits, RefusesWhatIsNotWholeBytesInTheBuffer)
{
    const Bytes bytes = {'#', '1', '2', '3', '4', '5', '6', '7', '8', '9', '#'};
    struct Row {
        uint32_t start;
        uint32_t end;
        uint8_t width;
        bool accepted;
        uint16_t crc;
    };
    const Row rows[] = {
        {8, 80, 16, true, 0x31c3},
        {0, 88, 16, true, divide(bytes.data(), 11)},
        {80, 88, 16, true, divide(bytes.data() + 10, 1)},
        {8, 80, 15, false, 0},
        {8, 80, 32, false, 0},
        {8, 8, 16, false, 0},
        {16, 8, 16, false, 0},
        {8, 96, 16, false, 0},
        {8, 0xfffffff8, 16, false, 0},
        {9, 80, 16, false, 0},
        {8, 81, 16, false, 0},
    };
    for (const Row& row : rows) {
        uint16_t crc = 0xaaaa;
        EXPECT_EQ(korcg_crc16(bytes.data(), static_cast<uint16_t>(bytes.size()), row.start, row.end,
                              row.width, &crc),
                  row.accepted)
            << row.start << " to " << row.end;
        EXPECT_EQ(crc, row.crc) << row.start << " to " << row.end;
    }
}

} // namespace
