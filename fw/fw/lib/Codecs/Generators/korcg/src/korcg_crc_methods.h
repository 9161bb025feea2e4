#pragma once

#include <cstddef>
#include <cstdint>

#if defined(__x86_64__) && defined(__GNUC__)
#define KORCG_HAVE_CLMUL 1
#else
#define KORCG_HAVE_CLMUL 0
#endif

// On Windows gcc does not align its stack for vectors of more than 16 bytes.
#if KORCG_HAVE_CLMUL && (!defined(_WIN32) || defined(__clang__))
#define KORCG_HAVE_LONG_VECTORS 1
#else
#define KORCG_HAVE_LONG_VECTORS 0
#endif

namespace korcg
{

/// The ways to compute the checksum, all with the meaning of korcg_crc16_bytes.
uint16_t crcByteTable(const uint8_t* data, size_t size, uint16_t start);
uint16_t crcSlicing(const uint8_t* data, size_t size, uint16_t start);

/// The ways to join checksums, with the meaning of korcg_crc16_combine.
uint16_t combineByShifts(uint16_t crcA, uint16_t crcB, size_t lengthB);

#if KORCG_HAVE_CLMUL
/// Vectors of 16 bytes and carry-less multiplication, and whether this processor can do it.
uint16_t crcClmul(const uint8_t* data, size_t size, uint16_t start);
bool crcClmulRuns();
uint16_t combineByClmul(uint16_t crcA, uint16_t crcB, size_t lengthB);
#endif

#if KORCG_HAVE_LONG_VECTORS
/// Likewise with vectors of 32 bytes, multiplied 16 bytes at a time.
uint16_t crcAvx2(const uint8_t* data, size_t size, uint16_t start);
bool crcAvx2Runs();

/// Likewise with vectors of 64 bytes throughout.
uint16_t crcWideClmul(const uint8_t* data, size_t size, uint16_t start);
bool crcWideClmulRuns();
#endif

} // namespace korcg
