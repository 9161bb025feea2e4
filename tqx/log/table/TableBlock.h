#pragma once

#include "TQX_Format.h"

#include <cstdint>
#include <string_view>

namespace tqx
{

/// A framed block with a valid checksum, and what a table says about it besides its fields.
struct TableBlock {
    const uint8_t* data;
    uint16_t size;
    /// Week rollovers since the start of the log, this block included: the weekCounter of a
    /// decoding context after it. TOWc is counted from it.
    uint8_t week;
    uint64_t offset;       ///< of its first byte in its file
    std::string_view file; ///< name of that file; only for tables with a column of files

    uint16_t getId() const { return static_cast<uint16_t>(data[4] | data[5] << 8U); }
    uint16_t getNumber() const { return Kor::MessageApi::TQX_blockNumberOf(getId()); }
    unsigned getRevision() const { return Kor::MessageApi::TQX_revisionOf(getId()); }
};

} // namespace tqx
