#pragma once

#include "TQX_Format.h"
#include "tqx/log/schema/Schema.h"
#include "tqx/log/time/GnssTime.h"
#include "tqx_log_export.h"

#include <cstdint>
#include <optional>
#include <string>

namespace tqx
{

/// A framed block with a valid checksum. It refers to bytes, at least 8, of the object that
/// returned it, and is valid as long as that one documents.
struct TQX_LOG_API Block {
    const uint8_t* data;
    uint16_t size;
    uint64_t offset; ///< of its first byte in its file

    uint16_t getNumber() const { return Kor::MessageApi::TQX_blockNumberOf(getId()); }
    unsigned getRevision() const { return Kor::MessageApi::TQX_revisionOf(getId()); }
    uint16_t getId() const { return static_cast<uint16_t>(data[4] | data[5] << 8U); }

    /// The time in its header; nothing when that is not available or the block too short for it.
    std::optional<GnssMillis> getTime() const;
};

/// "<name> (4007)", or "block 1234" for a number that no type of the schema has.
TQX_LOG_API std::string describeBlock(uint16_t number, const Schema& schema = {});
/// The same, with the built-in types.
TQX_LOG_API std::string describeBlock(const Kor::MessageApi::TQX_TypeLayout& type);

} // namespace tqx
