#pragma once

#include "TQX_codec.h"

#include <cstdint>
#include <random>
#include <vector>

/// Random but well-formed blocks of any main type, built along the layout table.
struct BlockOptions {
    unsigned revision = 0;
    unsigned largestCount = 4; ///< entries and elements of counted fields
    unsigned extraBytes = 0;   ///< unknown bytes after each entry
    bool overrun = false;      ///< counted fields hold one element more than records have room for
};

/// One framed block: a random value in every field, extremes included, counts and lengths
/// consistent, Length and CRC right.
std::vector<uint8_t> randomBlock(const Kor::MessageApi::TQX_TypeLayout& type,
                                 const BlockOptions& options, std::mt19937_64& random);

/// Likewise an entry of a sub-block type; entries nested in it have their known length.
std::vector<uint8_t> randomEntry(const Kor::MessageApi::TQX_TypeLayout& type,
                                 const BlockOptions& options, std::mt19937_64& random);
