#pragma once

#include "tqx_log_export.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

namespace tqx
{

/// Bytes in order: a file, several files as one, memory, a decompressed stream. Used by one thread
/// at a time.
class TQX_LOG_API ByteSource
{
public:
    /// Where a byte comes from.
    struct Place {
        const std::string& file; ///< its name; lives as long as the source
        uint64_t offset;         ///< of the byte in that file
    };

    virtual ~ByteSource();

    /// Writes up to `capacity` bytes to `bytes` and returns how many, 0 only at the end. Returns
    /// what is available rather than waiting for more. Throws SourceError; nothing was read then.
    virtual size_t read(uint8_t* bytes, size_t capacity) = 0;

    /// Skips `count` bytes, or as many as there are, and returns how many. Throws SourceError.
    virtual uint64_t skip(uint64_t count);

    /// Whether a read would return within `patience`, with bytes or at the end. True for sources
    /// that never wait.
    virtual bool isReady(std::chrono::milliseconds patience);

    /// The file and offset of the byte at `offset` of the source. Only for bytes that were read.
    virtual Place placeOf(uint64_t offset) const = 0;

    /// Whether the end was requested before the data ended, so that a block cut off by it is not
    /// damage.
    virtual bool isInterrupted() const { return false; }

protected:
    ByteSource() = default;
    ByteSource(const ByteSource&) = default;
    ByteSource& operator=(const ByteSource&) = default;
};

} // namespace tqx
