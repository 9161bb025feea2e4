#pragma once

#include <cstdint>
#include <cstring>

/// Little-endian numbers at byte addresses of any alignment. The bytes are put together by shifts,
/// which yields the same value on every host and which compilers turn into a single move on
/// little-endian ones. No bounds check: the caller has made sure that the bytes are there.

constexpr uint8_t korcg_load_u8(const uint8_t* bytes)
{
    return bytes[0];
}

constexpr uint16_t korcg_load_u16(const uint8_t* bytes)
{
    return static_cast<uint16_t>(bytes[0] | bytes[1] << 8);
}

constexpr uint32_t korcg_load_u32(const uint8_t* bytes)
{
    return static_cast<uint32_t>(bytes[0]) | static_cast<uint32_t>(bytes[1]) << 8 |
           static_cast<uint32_t>(bytes[2]) << 16 | static_cast<uint32_t>(bytes[3]) << 24;
}

constexpr uint64_t korcg_load_u64(const uint8_t* bytes)
{
    return static_cast<uint64_t>(bytes[0]) | static_cast<uint64_t>(bytes[1]) << 8 |
           static_cast<uint64_t>(bytes[2]) << 16 | static_cast<uint64_t>(bytes[3]) << 24 |
           static_cast<uint64_t>(bytes[4]) << 32 | static_cast<uint64_t>(bytes[5]) << 40 |
           static_cast<uint64_t>(bytes[6]) << 48 | static_cast<uint64_t>(bytes[7]) << 56;
}

constexpr int8_t korcg_load_i8(const uint8_t* bytes)
{
    return static_cast<int8_t>(korcg_load_u8(bytes));
}

constexpr int16_t korcg_load_i16(const uint8_t* bytes)
{
    return static_cast<int16_t>(korcg_load_u16(bytes));
}

constexpr int32_t korcg_load_i32(const uint8_t* bytes)
{
    return static_cast<int32_t>(korcg_load_u32(bytes));
}

constexpr int64_t korcg_load_i64(const uint8_t* bytes)
{
    return static_cast<int64_t>(korcg_load_u64(bytes));
}

/// The bit pattern is kept as it is, payloads of NaNs included.
inline float korcg_load_f32(const uint8_t* bytes)
{
    const uint32_t bits = korcg_load_u32(bytes);
    float value;
    static_assert(sizeof value == sizeof bits);
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

/// The bit pattern is kept as it is, payloads of NaNs included.
inline double korcg_load_f64(const uint8_t* bytes)
{
    const uint64_t bits = korcg_load_u64(bytes);
    double value;
    static_assert(sizeof value == sizeof bits);
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

constexpr void korcg_store_u8(uint8_t* bytes, uint8_t value)
{
    bytes[0] = value;
}

constexpr void korcg_store_u16(uint8_t* bytes, uint16_t value)
{
    bytes[0] = static_cast<uint8_t>(value);
    bytes[1] = static_cast<uint8_t>(value >> 8);
}

constexpr void korcg_store_u32(uint8_t* bytes, uint32_t value)
{
    bytes[0] = static_cast<uint8_t>(value);
    bytes[1] = static_cast<uint8_t>(value >> 8);
    bytes[2] = static_cast<uint8_t>(value >> 16);
    bytes[3] = static_cast<uint8_t>(value >> 24);
}

constexpr void korcg_store_u64(uint8_t* bytes, uint64_t value)
{
    bytes[0] = static_cast<uint8_t>(value);
    bytes[1] = static_cast<uint8_t>(value >> 8);
    bytes[2] = static_cast<uint8_t>(value >> 16);
    bytes[3] = static_cast<uint8_t>(value >> 24);
    bytes[4] = static_cast<uint8_t>(value >> 32);
    bytes[5] = static_cast<uint8_t>(value >> 40);
    bytes[6] = static_cast<uint8_t>(value >> 48);
    bytes[7] = static_cast<uint8_t>(value >> 56);
}

constexpr void korcg_store_i8(uint8_t* bytes, int8_t value)
{
    korcg_store_u8(bytes, static_cast<uint8_t>(value));
}

constexpr void korcg_store_i16(uint8_t* bytes, int16_t value)
{
    korcg_store_u16(bytes, static_cast<uint16_t>(value));
}

constexpr void korcg_store_i32(uint8_t* bytes, int32_t value)
{
    korcg_store_u32(bytes, static_cast<uint32_t>(value));
}

constexpr void korcg_store_i64(uint8_t* bytes, int64_t value)
{
    korcg_store_u64(bytes, static_cast<uint64_t>(value));
}

inline void korcg_store_f32(uint8_t* bytes, float value)
{
    uint32_t bits;
    static_assert(sizeof value == sizeof bits);
    std::memcpy(&bits, &value, sizeof bits);
    korcg_store_u32(bytes, bits);
}

inline void korcg_store_f64(uint8_t* bytes, double value)
{
    uint64_t bits;
    static_assert(sizeof value == sizeof bits);
    std::memcpy(&bits, &value, sizeof bits);
    korcg_store_u64(bytes, bits);
}
