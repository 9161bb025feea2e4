#include "korcg_bits.h"

#include "korcg_assert.h"

#include <array>
#include <cstring>

#define ASSERT_TEXT(condition, text) KORCG_ASSERT(KORCG_RUNTIME_PATH, condition, text)
#define ASSERT(condition) ASSERT_TEXT(condition, #condition)

// The sum is formed in 64 bits, so that an offset near 2^32 fails instead of wrapping.
#define ASSERT_IN_BUFFER()                                                                         \
    ASSERT_TEXT(uint64_t{offset} + bit_len <= uint64_t{data_size} * 8,                             \
                "(offset + bit_len) <= (UINT32)(data_size * 8)")

namespace
{

// Fields of 33 bits and more are a low word and a high part, which is as wide as these say.
constexpr uint8_t highPart16 = 41; // from here on the high part has more than 8 bits
constexpr uint8_t highPart32 = 49; // from here on it has more than 16 bits

uint8_t takeBits(const uint8_t* buffer, uint32_t offset, uint8_t bit_len)
{
    unsigned value = 0;
    for (uint32_t bit = offset; bit < offset + bit_len; ++bit) {
        value = value << 1 | (buffer[bit / 8] >> (7 - bit % 8) & 1u);
    }
    return static_cast<uint8_t>(value);
}

void putBits(uint8_t* buffer, uint32_t offset, uint8_t bit_len, uint8_t value)
{
    for (uint32_t i = 0; i < bit_len; ++i) {
        const uint32_t bit = offset + i;
        const unsigned mask = 0x80u >> bit % 8;
        const unsigned source = bit_len - 1u - i;
        const bool set = source < 8 && (value >> source & 1u) != 0;
        uint8_t& byte = buffer[bit / 8];
        byte = static_cast<uint8_t>(set ? byte | mask : byte & ~mask);
    }
}

/// Sets all bits from `bit_len` upward when bit `bit_len` - 1 is set.
template<typename Signed, typename Unsigned>
Signed extendSign(Unsigned value, uint8_t bit_len)
{
    static_assert(sizeof(Signed) == sizeof(Unsigned));
    if (bit_len < sizeof(Unsigned) * 8 && (value >> (bit_len - 1) & 1) != 0) {
        value = static_cast<Unsigned>(value | ~uint64_t{0} << bit_len);
    }
    return static_cast<Signed>(value);
}

constexpr std::array<uint8_t, 256> makeBitCounts()
{
    std::array<uint8_t, 256> counts{};
    for (unsigned byte = 0; byte < 256; ++byte) {
        counts[byte] = static_cast<uint8_t>(counts[byte / 2] + byte % 2);
    }
    return counts;
}

constexpr std::array<uint8_t, 256> bitCounts = makeBitCounts();

} // namespace

void korcg_read_u8(const uint8_t* buffer, uint16_t data_size, uint32_t offset, uint8_t bit_len,
                   uint8_t* value)
{
    ASSERT_IN_BUFFER();
    *value = takeBits(buffer, offset, bit_len);
}

void korcg_read_i8(const uint8_t* buffer, uint16_t data_size, uint32_t offset, uint8_t bit_len,
                   int8_t* value)
{
    ASSERT_IN_BUFFER();
    ASSERT(bit_len > 0);
    ASSERT(bit_len <= 8);
    *value = extendSign<int8_t>(takeBits(buffer, offset, bit_len), bit_len);
}

void korcg_read_u16(const uint8_t* buffer, uint16_t data_size, uint32_t offset, uint8_t bit_len,
                    uint16_t* value)
{
    ASSERT_IN_BUFFER();
    ASSERT(bit_len > 8);
    ASSERT(bit_len <= 16);
    const unsigned low = takeBits(buffer, offset, 8);
    const unsigned high = takeBits(buffer, offset + 8, static_cast<uint8_t>(bit_len - 8));
    *value = static_cast<uint16_t>(high << 8 | low);
}

void korcg_read_i16(const uint8_t* buffer, uint16_t data_size, uint32_t offset, uint8_t bit_len,
                    int16_t* value)
{
    uint16_t bits;
    korcg_read_u16(buffer, data_size, offset, bit_len, &bits);
    *value = extendSign<int16_t>(bits, bit_len);
}

void korcg_read_u32(const uint8_t* buffer, uint16_t data_size, uint32_t offset, uint8_t bit_len,
                    uint32_t* value)
{
    ASSERT_IN_BUFFER();
    ASSERT(bit_len > 16);
    ASSERT(bit_len <= 32);
    uint32_t bits = takeBits(buffer, offset, 8);
    bits |= uint32_t{takeBits(buffer, offset + 8, 8)} << 8;
    if (bit_len < 25) {
        bits |= uint32_t{takeBits(buffer, offset + 16, static_cast<uint8_t>(bit_len - 16))} << 16;
    } else {
        bits |= uint32_t{takeBits(buffer, offset + 16, 8)} << 16;
        bits |= uint32_t{takeBits(buffer, offset + 24, static_cast<uint8_t>(bit_len - 24))} << 24;
    }
    *value = bits;
}

void korcg_read_i32(const uint8_t* buffer, uint16_t data_size, uint32_t offset, uint8_t bit_len,
                    int32_t* value)
{
    uint32_t bits;
    korcg_read_u32(buffer, data_size, offset, bit_len, &bits);
    *value = extendSign<int32_t>(bits, bit_len);
}

void korcg_read_u64(const uint8_t* buffer, uint16_t data_size, uint32_t offset, uint8_t bit_len,
                    uint64_t* value)
{
    ASSERT_IN_BUFFER();
    ASSERT(bit_len > 32);
    ASSERT(bit_len <= 64);
    const auto highLength = static_cast<uint8_t>(bit_len - 32);
    uint32_t low;
    korcg_read_u32(buffer, data_size, offset, 32, &low);
    uint32_t high;
    if (bit_len < highPart16) {
        uint8_t part;
        korcg_read_u8(buffer, data_size, offset + 32, highLength, &part);
        high = part;
    } else if (bit_len < highPart32) {
        uint16_t part;
        korcg_read_u16(buffer, data_size, offset + 32, highLength, &part);
        high = part;
    } else {
        korcg_read_u32(buffer, data_size, offset + 32, highLength, &high);
    }
    *value = uint64_t{high} << 32 | low;
}

void korcg_read_f32(const uint8_t* buffer, uint16_t data_size, uint32_t offset, uint8_t bit_len,
                    float* value)
{
    ASSERT_IN_BUFFER();
    ASSERT(bit_len == 32);
    uint32_t bits;
    korcg_read_u32(buffer, data_size, offset, bit_len, &bits);
    std::memcpy(value, &bits, sizeof bits);
}

void korcg_read_f64(const uint8_t* buffer, uint16_t data_size, uint32_t offset, uint8_t bit_len,
                    double* value)
{
    ASSERT_IN_BUFFER();
    ASSERT(bit_len == 64);
    uint64_t bits;
    korcg_read_u64(buffer, data_size, offset, bit_len, &bits);
    std::memcpy(value, &bits, sizeof bits);
}

void korcg_write_u8(uint8_t* buffer, uint16_t data_size, uint32_t offset, uint8_t bit_len,
                    uint8_t value)
{
    ASSERT_IN_BUFFER();
    putBits(buffer, offset, bit_len, value);
}

void korcg_write_i8(uint8_t* buffer, uint16_t data_size, uint32_t offset, uint8_t bit_len,
                    int8_t value)
{
    ASSERT_IN_BUFFER();
    ASSERT(bit_len > 0);
    ASSERT(bit_len <= 8);
    putBits(buffer, offset, bit_len, static_cast<uint8_t>(value));
}

void korcg_write_u16(uint8_t* buffer, uint16_t data_size, uint32_t offset, uint8_t bit_len,
                     uint16_t value)
{
    ASSERT_IN_BUFFER();
    ASSERT(bit_len > 8);
    ASSERT(bit_len <= 16);
    putBits(buffer, offset, 8, static_cast<uint8_t>(value));
    putBits(buffer, offset + 8, static_cast<uint8_t>(bit_len - 8),
            static_cast<uint8_t>(value >> 8));
}

void korcg_write_i16(uint8_t* buffer, uint16_t data_size, uint32_t offset, uint8_t bit_len,
                     int16_t value)
{
    korcg_write_u16(buffer, data_size, offset, bit_len, static_cast<uint16_t>(value));
}

void korcg_write_u32(uint8_t* buffer, uint16_t data_size, uint32_t offset, uint8_t bit_len,
                     uint32_t value)
{
    ASSERT_IN_BUFFER();
    ASSERT(bit_len > 16);
    ASSERT(bit_len <= 32);
    putBits(buffer, offset, 8, static_cast<uint8_t>(value));
    putBits(buffer, offset + 8, 8, static_cast<uint8_t>(value >> 8));
    if (bit_len < 25) {
        putBits(buffer, offset + 16, static_cast<uint8_t>(bit_len - 16),
                static_cast<uint8_t>(value >> 16));
    } else {
        putBits(buffer, offset + 16, 8, static_cast<uint8_t>(value >> 16));
        putBits(buffer, offset + 24, static_cast<uint8_t>(bit_len - 24),
                static_cast<uint8_t>(value >> 24));
    }
}

void korcg_write_i32(uint8_t* buffer, uint16_t data_size, uint32_t offset, uint8_t bit_len,
                     int32_t value)
{
    korcg_write_u32(buffer, data_size, offset, bit_len, static_cast<uint32_t>(value));
}

void korcg_write_u64(uint8_t* buffer, uint16_t data_size, uint32_t offset, uint8_t bit_len,
                     uint64_t value)
{
    ASSERT_IN_BUFFER();
    ASSERT(bit_len > 32);
    ASSERT(bit_len <= 64);
    const auto highLength = static_cast<uint8_t>(bit_len - 32);
    const auto high = static_cast<uint32_t>(value >> 32);
    korcg_write_u32(buffer, data_size, offset, 32, static_cast<uint32_t>(value));
    if (bit_len < highPart16) {
        korcg_write_u8(buffer, data_size, offset + 32, highLength, static_cast<uint8_t>(high));
    } else if (bit_len < highPart32) {
        korcg_write_u16(buffer, data_size, offset + 32, highLength, static_cast<uint16_t>(high));
    } else {
        korcg_write_u32(buffer, data_size, offset + 32, highLength, high);
    }
}

void korcg_write_f32(uint8_t* buffer, uint16_t data_size, uint32_t offset, uint8_t bit_len,
                     float value)
{
    ASSERT_IN_BUFFER();
    ASSERT(bit_len == 32);
    uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    korcg_write_u32(buffer, data_size, offset, bit_len, bits);
}

void korcg_write_f64(uint8_t* buffer, uint16_t data_size, uint32_t offset, uint8_t bit_len,
                     double value)
{
    ASSERT_IN_BUFFER();
    ASSERT(bit_len == 64);
    uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    korcg_write_u64(buffer, data_size, offset, bit_len, bits);
}

uint32_t korcg_countBits(uint32_t word)
{
    return uint32_t{bitCounts[word & 0xff]} + bitCounts[word >> 8 & 0xff] +
           bitCounts[word >> 16 & 0xff] + bitCounts[word >> 24];
}

void korcg_fill(uint8_t* buffer, size_t size, uint8_t value)
{
    const uint32_t word = value * 0x01010101u;
    size_t done = 0;
    for (; size - done >= sizeof word; done += sizeof word) {
        std::memcpy(buffer + done, &word, sizeof word);
    }
    for (; done < size; ++done) {
        buffer[done] = value;
    }
}
