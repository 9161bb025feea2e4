#pragma once

#include "korcg_export.h"

#include <cstddef>
#include <cstdint>

/// The checksum of TQX blocks: CRC-16-CCITT, polynomial 0x1021, initial value 0, neither input nor
/// output reflected, no final XOR (also published as CRC-16/XMODEM). The nine characters
/// "123456789" give 0x31c3, no bytes give 0.

/// One way to compute the checksum.
struct korcg_CrcMethod_s {
    const char* name;
    /// As korcg_crc16_bytes.
    uint16_t (*run)(const uint8_t* data, size_t size, uint16_t start);
    /// As korcg_crc16_combine.
    uint16_t (*combine)(uint16_t crcA, uint16_t crcB, size_t lengthB);
};

extern "C" {

/// Checksum of the bits from `startBit` up to but not including `endBit`, counted from the start
/// of the buffer of `data_size` bytes. True and the checksum in `*crc`; false and 0 in `*crc` when
/// `width` is not 16, when `startBit` is not below `endBit`, when `endBit` lies outside the buffer,
/// or when either is not a multiple of 8.
KORCG_API bool korcg_crc16(const uint8_t* buffer, uint16_t data_size, uint32_t startBit,
                           uint32_t endBit, uint8_t width, uint16_t* crc);

/// Checksum of `size` bytes of any alignment, by the fastest method that the processor offers.
/// `start` is the checksum of the bytes before them, so that
/// `korcg_crc16_bytes(b, n, korcg_crc16_bytes(a, m))` is the checksum of both.
KORCG_API uint16_t korcg_crc16_bytes(const uint8_t* data, size_t size, uint16_t start = 0);

/// Checksum of A followed by B from the checksum of A, that of B and the number of bytes of B;
/// the bytes themselves are not needed and the time does not depend on their number. The same
/// call turns the checksum of A and that of A followed by B into that of B:
/// `crcB == korcg_crc16_combine(crcA, crcAB, lengthB)`.
KORCG_API uint16_t korcg_crc16_combine(uint16_t crcA, uint16_t crcB, size_t lengthB);

/// All methods that run on this processor, from the slowest to the fastest, for tests and
/// measurements: returns how many, `*methods` points to the first. The last one is the one that
/// korcg_crc16_bytes uses for blocks of common size.
KORCG_API size_t korcg_crc16_methods(const korcg_CrcMethod_s** methods);
}
