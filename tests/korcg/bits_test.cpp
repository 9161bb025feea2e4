#include "korcg_assert.h"
#include "korcg_bits.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <unistd.h>
#include <vector>

namespace
{

using Bytes = std::vector<uint8_t>;

/// One width class: its reader and writer, through 64 bits (floats as their bit patterns, signed
/// values extended).
struct Primitive {
    const char* name;
    unsigned least;
    unsigned most;
    bool isSigned;
    const char* leastText; ///< assertion on a width below, empty for none
    const char* mostText;
    std::function<uint64_t(const Bytes&, uint32_t, unsigned)> read;
    std::function<void(Bytes&, uint32_t, unsigned, uint64_t)> write;
};

template<typename T, typename Bits = std::make_unsigned_t<T>>
Primitive primitive(const char* name, unsigned least, unsigned most, bool isSigned,
                    const char* leastText, const char* mostText,
                    void (*read)(const uint8_t*, uint16_t, uint32_t, uint8_t, T*),
                    void (*write)(uint8_t*, uint16_t, uint32_t, uint8_t, T))
{
    static_assert(sizeof(T) == sizeof(Bits));
    return {name,
            least,
            most,
            isSigned,
            leastText,
            mostText,
            [read](const Bytes& bytes, uint32_t offset, unsigned width) {
                T value;
                read(bytes.data(), static_cast<uint16_t>(bytes.size()), offset,
                     static_cast<uint8_t>(width), &value);
                if constexpr (std::is_integral_v<T>) {
                    return static_cast<uint64_t>(value);
                } else {
                    Bits bits;
                    std::memcpy(&bits, &value, sizeof bits);
                    return static_cast<uint64_t>(bits);
                }
            },
            [write](Bytes& bytes, uint32_t offset, unsigned width, uint64_t value) {
                const auto bits = static_cast<Bits>(value);
                T typed;
                std::memcpy(&typed, &bits, sizeof typed);
                write(bytes.data(), static_cast<uint16_t>(bytes.size()), offset,
                      static_cast<uint8_t>(width), typed);
            }};
}

const std::vector<Primitive>& primitives()
{
    static const std::vector<Primitive> all = {
        primitive("u8", 1, 8, false, "", "", korcg_read_u8, korcg_write_u8),
        primitive("i8", 1, 8, true, "bit_len > 0", "bit_len <= 8", korcg_read_i8, korcg_write_i8),
        primitive("u16", 9, 16, false, "bit_len > 8", "bit_len <= 16", korcg_read_u16,
                  korcg_write_u16),
        primitive("i16", 9, 16, true, "bit_len > 8", "bit_len <= 16", korcg_read_i16,
                  korcg_write_i16),
        primitive("u32", 17, 32, false, "bit_len > 16", "bit_len <= 32", korcg_read_u32,
                  korcg_write_u32),
        primitive("i32", 17, 32, true, "bit_len > 16", "bit_len <= 32", korcg_read_i32,
                  korcg_write_i32),
        primitive("u64", 33, 64, false, "bit_len > 32", "bit_len <= 64", korcg_read_u64,
                  korcg_write_u64),
        primitive<float, uint32_t>("f32", 32, 32, false, "bit_len == 32", "bit_len == 32",
                                   korcg_read_f32, korcg_write_f32),
        primitive<double, uint64_t>("f64", 64, 64, false, "bit_len == 64", "bit_len == 64",
                                    korcg_read_f64, korcg_write_f64)};
    return all;
}

/// Bit of the buffer that holds bit `bit` of a value of `width` bits.
uint32_t placeOf(unsigned bit, unsigned width)
{
    const unsigned chunk = bit / 8;
    const unsigned chunkWidth = std::min(8u, width - 8 * chunk);
    return 8 * chunk + chunkWidth - 1 - bit % 8;
}

uint8_t maskOf(uint32_t place)
{
    return static_cast<uint8_t>(0x80 >> place % 8);
}

/// What a read must give, extended to 64 bits when signed.
uint64_t expectedRead(const Bytes& bytes, uint32_t offset, unsigned width, bool isSigned)
{
    uint64_t value = 0;
    for (unsigned bit = 0; bit < 64; ++bit) {
        const uint32_t place = offset + placeOf(std::min(bit, width - 1), width);
        if ((bit < width || isSigned) && (bytes[place / 8] & maskOf(place)) != 0) {
            value |= uint64_t{1} << bit;
        }
    }
    return value;
}

void expectedWrite(Bytes& bytes, uint32_t offset, unsigned width, uint64_t value)
{
    for (unsigned bit = 0; bit < width; ++bit) {
        const uint32_t place = offset + placeOf(bit, width);
        uint8_t& byte = bytes[place / 8];
        byte = static_cast<uint8_t>((byte & ~maskOf(place)) |
                                    ((value >> bit & 1) != 0 ? maskOf(place) : 0));
    }
}

TEST(Bits, WorkedExamples)
{
    struct Row {
        size_t primitive;
        Bytes bytes;
        uint32_t offset;
        unsigned width;
        int64_t value;
    };
    const Row rows[] = {
        {2, {0x24, 0x40, 0x00, 0x00, 0xa7, 0x2f}, 32, 16, 0x2fa7},
        {1, {0x08}, 4, 4, -8},
        {1, {0x80}, 0, 8, -128},
        {2, {0xff, 0xff}, 0, 13, 0x1fff},
        {0, {0x28}, 2, 3, 5},
        {3, {0x01, 0x80}, 0, 9, -255},
        {5, {0x01, 0x02, 0x03, 0x84}, 0, 32, -0x7bfcfdff},
        {7, {0x00, 0x00, 0x80, 0x3f}, 0, 32, 0x3f800000},
    };
    for (const Row& row : rows) {
        const Primitive& primitive = primitives()[row.primitive];
        const auto value = static_cast<uint64_t>(row.value);
        EXPECT_EQ(primitive.read(row.bytes, row.offset, row.width), value) << primitive.name;
        Bytes written = row.bytes;
        std::fill(written.begin() + row.offset / 8, written.end(), uint8_t{0});
        primitive.write(written, row.offset, row.width, value);
        EXPECT_EQ(primitive.read(written, row.offset, row.width), value) << primitive.name;
    }
    Bytes zero = {0};
    korcg_write_u8(zero.data(), 1, 2, 3, 5);
    EXPECT_EQ(zero[0], 0x28);
}

// The buffer ends with the byte that holds the field's last bit.
TEST(Bits, EveryWidthAtEveryOffset)
{
    std::mt19937_64 random(4027);
    for (const Primitive& primitive : primitives()) {
        for (unsigned width = primitive.least; width <= primitive.most; ++width) {
            for (uint32_t offset = 0; offset < 24; ++offset) {
                Bytes bytes((offset + width + 7) / 8);
                for (uint8_t& byte : bytes) {
                    byte = static_cast<uint8_t>(random());
                }
                EXPECT_EQ(primitive.read(bytes, offset, width),
                          expectedRead(bytes, offset, width, primitive.isSigned))
                    << primitive.name << ", " << width << " bits at " << offset;

                const uint64_t value = random();
                Bytes expected = bytes;
                expectedWrite(expected, offset, width, value);
                primitive.write(bytes, offset, width, value);
                EXPECT_EQ(bytes, expected)
                    << primitive.name << ", " << width << " bits at " << offset;
            }
        }
    }
}

// Assertions are printed to standard output, of which the test framework looks only at the error
// stream.
void showStandardOutput()
{
    dup2(STDERR_FILENO, STDOUT_FILENO);
}

std::string reportOf(const char* expression)
{
    std::string pattern = "^\\.\\.\\\\fw\\\\fw\\\\lib\\\\Codecs\\\\Generators\\\\korcg\\\\src\\\\"
                          "korcg:[0-9]+: Assertion failed '";
    for (const char* c = expression; *c != '\0'; ++c) {
        pattern +=
            std::strchr("()*+.", *c) != nullptr ? std::string("\\") + *c : std::string(1, *c);
    }
    return pattern + "'\n$";
}

TEST(BitsDeathTest, FieldBeyondTheBuffer)
{
    const std::string report = reportOf("(offset + bit_len) <= (UINT32)(data_size * 8)");
    for (const Primitive& primitive : primitives()) {
        Bytes bytes(16);
        const unsigned width = primitive.most;
        const uint32_t last = 128 - width;
        primitive.write(bytes, last, width, 0);
        EXPECT_EQ(primitive.read(bytes, last, width), 0u);
        for (const uint32_t offset : {last + 1, uint32_t{0} - 8}) {
            EXPECT_EXIT((showStandardOutput(), primitive.read(bytes, offset, width)),
                        testing::ExitedWithCode(1), report)
                << primitive.name;
            EXPECT_EXIT((showStandardOutput(), primitive.write(bytes, offset, width, 0)),
                        testing::ExitedWithCode(1), report)
                << primitive.name;
        }
    }
}

TEST(BitsDeathTest, WidthOutOfRange)
{
    for (const Primitive& primitive : primitives()) {
        if (*primitive.leastText == '\0') {
            continue;
        }
        Bytes bytes(16);
        const std::pair<unsigned, const char*> cases[] = {
            {primitive.least - 1, primitive.leastText}, {primitive.most + 1, primitive.mostText}};
        for (const auto& [width, text] : cases) {
            EXPECT_EXIT((showStandardOutput(), primitive.read(bytes, 0, width)),
                        testing::ExitedWithCode(1), reportOf(text))
                << primitive.name;
            EXPECT_EXIT((showStandardOutput(), primitive.write(bytes, 0, width, 0)),
                        testing::ExitedWithCode(1), reportOf(text))
                << primitive.name;
        }
    }
}

TEST(AssertDeathTest, NamesFileLineAndExpression)
{
    KORCG_ASSERT("file", true, "holds");
    const std::string report = "^file:" + std::to_string(__LINE__ + 1) + ": Assertion failed 'x'";
    EXPECT_EXIT((showStandardOutput(), KORCG_ASSERT("file", false, "x")),
                testing::ExitedWithCode(1), report);
}

TEST(CountBits, OfAWord)
{
    for (unsigned bit = 0; bit < 32; ++bit) {
        EXPECT_EQ(korcg_countBits(uint32_t{1} << bit), 1u);
        EXPECT_EQ(korcg_countBits(~uint32_t{0} >> bit), 32 - bit);
    }
    EXPECT_EQ(korcg_countBits(0), 0u);
    EXPECT_EQ(korcg_countBits(0xa5f00f13), 15u);
}

TEST(Fill, TouchesItsBytesOnly)
{
    for (size_t size = 0; size < 20; ++size) {
        Bytes bytes(22, 0x55);
        korcg_fill(bytes.data() + 1, size, 0xa7);
        Bytes expected(22, 0x55);
        std::fill_n(expected.begin() + 1, size, uint8_t{0xa7});
        EXPECT_EQ(bytes, expected) << size;
    }
}

} // namespace
