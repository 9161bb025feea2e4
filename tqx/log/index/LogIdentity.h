#pragma once

#include "tqx/log/source/RandomAccess.h"
#include "tqx_log_export.h"

#include <cstdint>

namespace tqx
{

/// Identifies a file: its size and the checksums (CRC-32) of its first and its last 64 kB.
struct TQX_LOG_API LogIdentity {
    uint64_t size = 0;
    uint32_t first = 0;
    uint32_t last = 0;

    enum class Match {
        Same,
        Longer, ///< it begins with the known file and is longer
        Other,
    };

    /// Throws SourceError when the file cannot be read.
    static LogIdentity of(const RandomAccess& file);

    /// Compares a file with this identity. Throws SourceError when it cannot be read.
    Match compare(const RandomAccess& file) const;
};

} // namespace tqx
