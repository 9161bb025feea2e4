#pragma once

#include "korcg_crc.h"
#include "korcg_load.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

/// A fuzzer cannot guess checksums: the bytes "FIX" before a sync request a correct one. Returns
/// `size` bytes from `data` on with such changes.
inline std::vector<uint8_t> withChecksums(const uint8_t* data, size_t size)
{
    std::vector<uint8_t> stream(data, data + size);
    for (size_t at = 0; at + 11 <= stream.size(); ++at) {
        uint8_t* block = &stream[at + 3];
        const size_t length = korcg_load_u16(block + 6);
        const bool marked = std::equal(&stream[at], block, "FIX") && block[0] == '$' &&
                            block[1] == '@' && length >= 8 && at + 3 + length <= stream.size();
        if (marked) {
            korcg_store_u16(block + 2, korcg_crc16_bytes(block + 4, length - 4));
        }
    }
    return stream;
}
