#pragma once

#include "tqx/log/index/Index.h"
#include "tqx/log/index/LogIdentity.h"
#include "tqx/log/source/Decompressor.h"
#include "tqx_log_export.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tqx
{

/// An index with what is needed to use it again.
struct SavedIndex {
    LogIdentity identity; ///< of the file, compressed as it is
    Compression compression = Compression::None;
    std::string damage;              ///< of a compressed file: "<offset>: <reason>", or empty
    std::vector<AccessPoint> points; ///< of a compressed file, ascending
    Index index;                     ///< of the content
};

/// Writes an index as bytes.
///
/// Numbers are little endian; `v` is a number in groups of 7 bits, the lowest first, whose bytes
/// but for the last have their highest bit set.
///
///     "TQXI"                       signature
///     u32 version                  1
///     u32 known                    checksum of the block numbers that decoding knows
///     u64 size, u32 first, u32 last    identity of the file
///     u64 content size             of what was indexed
///     u8 compression               0 none, 1 gzip, 2 zstd
///     v size                       of the text that says how a compressed file is damaged, and it
///     v points                     access points; for each:
///       v packed, v content        more than those of the point before
///       u8 bits                    0 to 7
///       v size                     of the window as a zlib stream, and its bytes
///     v pages                      of 64 kB; for each:
///       v entry, v first TOW at
///       u32 first TOW, u32 last TOW
///       u64 min, max, last time    in milliseconds; all ones: none
///     v types                      for each:
///       u16 number                 ascending
///       offsets
///     6 times offsets              checksum errors, invalid lengths, first and last bytes of gaps,
///                                  weeks, candidates cut off by the end
///     u32 checksum                 CRC-32 of all bytes before
///
/// where offsets are
///
///     v pages                      that have any; for each:
///       v page                     less the page before (the first one as it is)
///       v count                    1 or more
///       u16 offset                 each, ascending
TQX_LOG_API std::vector<uint8_t> packIndex(const SavedIndex& saved);

/// Reads what packIndex has written. Nothing for any other bytes; `reason` then receives why. Uses
/// at most about ten times the memory of the bytes.
TQX_LOG_API std::optional<SavedIndex> unpackIndex(const uint8_t* bytes, size_t size,
                                                  std::string& reason);

} // namespace tqx
