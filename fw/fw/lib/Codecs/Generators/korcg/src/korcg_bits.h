#pragma once

#include "korcg_export.h"

#include <cstddef>
#include <cstdint>

/// Bit-by-bit access to fields of any width at any bit offset: the reference for the faster byte
/// access of korcg_load.h.
///
/// Bit i of a buffer is bit 7 - i % 8 of its byte i / 8: bits are numbered from the most
/// significant bit of each byte. A field wider than a byte is cut into chunks of eight bits, least
/// significant first; the last chunk holds the bits that are left. At byte-aligned offsets and
/// whole bytes that is plain little-endian.
///
///     bytes 24 40 00 00 a7 2f, 16 bits at offset 32  ->  0x2fa7
///     bytes ff ff,             13 bits at offset 0   ->  0x1fff
///
/// Parameters of all functions:
/// - `buffer`, `data_size`: the bytes and how many there are;
/// - `offset`: first bit of the field, counted from the start of the buffer;
/// - `bit_len`: width of the field in bits, within the range given at each function.
///
/// A field that does not lie in the buffer, or a width out of range (tested by all but the
/// unsigned 8-bit functions), is a programming error and fails an assertion (korcg_assert.h): test
/// the bounds first. Nothing allocates, locks or keeps state.

extern "C" {

/// Readers store the field in `*value`. Signed readers extend the sign from bit `bit_len` - 1.

/// 1 to 8 bits; a width out of range is not detected.
KORCG_API void korcg_read_u8(const uint8_t* buffer, uint16_t data_size, uint32_t offset,
                             uint8_t bit_len, uint8_t* value);
/// 1 to 8 bits.
KORCG_API void korcg_read_i8(const uint8_t* buffer, uint16_t data_size, uint32_t offset,
                             uint8_t bit_len, int8_t* value);
/// 9 to 16 bits.
KORCG_API void korcg_read_u16(const uint8_t* buffer, uint16_t data_size, uint32_t offset,
                              uint8_t bit_len, uint16_t* value);
/// 9 to 16 bits.
KORCG_API void korcg_read_i16(const uint8_t* buffer, uint16_t data_size, uint32_t offset,
                              uint8_t bit_len, int16_t* value);
/// 17 to 32 bits.
KORCG_API void korcg_read_u32(const uint8_t* buffer, uint16_t data_size, uint32_t offset,
                              uint8_t bit_len, uint32_t* value);
/// 17 to 32 bits.
KORCG_API void korcg_read_i32(const uint8_t* buffer, uint16_t data_size, uint32_t offset,
                              uint8_t bit_len, int32_t* value);
/// 33 to 64 bits.
KORCG_API void korcg_read_u64(const uint8_t* buffer, uint16_t data_size, uint32_t offset,
                              uint8_t bit_len, uint64_t* value);
/// 32 bits, an IEEE 754 single.
KORCG_API void korcg_read_f32(const uint8_t* buffer, uint16_t data_size, uint32_t offset,
                              uint8_t bit_len, float* value);
/// 64 bits, an IEEE 754 double.
KORCG_API void korcg_read_f64(const uint8_t* buffer, uint16_t data_size, uint32_t offset,
                              uint8_t bit_len, double* value);

/// Writers put the lowest `bit_len` bits of `value` in place and leave all other bits untouched.
/// Widths as for the readers.

KORCG_API void korcg_write_u8(uint8_t* buffer, uint16_t data_size, uint32_t offset, uint8_t bit_len,
                              uint8_t value);
KORCG_API void korcg_write_i8(uint8_t* buffer, uint16_t data_size, uint32_t offset, uint8_t bit_len,
                              int8_t value);
KORCG_API void korcg_write_u16(uint8_t* buffer, uint16_t data_size, uint32_t offset,
                               uint8_t bit_len, uint16_t value);
KORCG_API void korcg_write_i16(uint8_t* buffer, uint16_t data_size, uint32_t offset,
                               uint8_t bit_len, int16_t value);
KORCG_API void korcg_write_u32(uint8_t* buffer, uint16_t data_size, uint32_t offset,
                               uint8_t bit_len, uint32_t value);
KORCG_API void korcg_write_i32(uint8_t* buffer, uint16_t data_size, uint32_t offset,
                               uint8_t bit_len, int32_t value);
KORCG_API void korcg_write_u64(uint8_t* buffer, uint16_t data_size, uint32_t offset,
                               uint8_t bit_len, uint64_t value);
KORCG_API void korcg_write_f32(uint8_t* buffer, uint16_t data_size, uint32_t offset,
                               uint8_t bit_len, float value);
KORCG_API void korcg_write_f64(uint8_t* buffer, uint16_t data_size, uint32_t offset,
                               uint8_t bit_len, double value);

/// Number of set bits of a word, 0 to 32.
KORCG_API uint32_t korcg_countBits(uint32_t word);

/// Sets `size` bytes from `buffer` on to `value`.
KORCG_API void korcg_fill(uint8_t* buffer, size_t size, uint8_t value);
}
