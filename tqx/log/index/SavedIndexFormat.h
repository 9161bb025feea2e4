#pragma once

#include "tqx_log_export.h"

#include <cstdint>

namespace tqx
{

/// What writer and reader of a saved index agree on.
struct TQX_LOG_API SavedIndexFormat {
    static constexpr uint32_t signature = 0x49585154; ///< "TQXI"
    static constexpr uint32_t version = 1;
    static constexpr uint16_t numbers = 0x2000; ///< block numbers are below

    /// A checksum of the block numbers that decoding knows. Weeks are followed by these, so an
    /// index made with other numbers does not match what decoding gives now.
    static uint32_t knownNumbers();
};

} // namespace tqx
