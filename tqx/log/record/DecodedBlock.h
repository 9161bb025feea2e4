#pragma once

#include "TQX_Format.h"
#include "TQX_RecordAccess.h"
#include "tqx/log/stream/Block.h"

#include <cstdint>

namespace tqx
{

/// What TQX_decode() returns for a block of an unknown number.
constexpr int32_t unknownNumber = Kor::MessageApi::TQX_invalidMessage;

/// A block and its decoded record.
struct DecodedBlock {
    Block block;
    const void* record;   ///< null when it did not decode
    int32_t consumed = 0; ///< bits, or the codec's negative code

    /// Only for a block that decoded.
    const Kor::MessageApi::TQX_MainHeader_s& getHeader() const
    {
        return *static_cast<const Kor::MessageApi::TQX_MainHeader_s*>(record);
    }

    /// Whether every byte of the block is in a field of the record.
    bool isCovered() const
    {
        const uint32_t bits = static_cast<uint32_t>(block.size) * 8;
        return consumed == static_cast<int32_t>(bits) && getHeader().korcg_bits == bits;
    }
};

} // namespace tqx
