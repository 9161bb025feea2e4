#pragma once

#include "tqx/log/source/ByteSource.h"
#include "tqx/log/source/Decompressor.h"
#include "tqx_log_export.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace tqx
{

/// The content of a gzip or Zstandard source, in constant memory. Offsets are those of the content.
/// Everything that can be decompressed is returned before damage or a missing end is reported, with
/// its offset in the compressed file; after that every read reports it again.
class TQX_LOG_API CompressedSource : public ByteSource
{
public:
    /// Least content between two access points.
    static constexpr uint64_t pointDistance = 4 << 20;

    /// Takes over the compressed bytes, which are read as content is requested. `compression` is
    /// not None. `points`, if given, is not owned and receives the access points found on the way.
    /// Throws DataError when there is no memory to decompress with.
    CompressedSource(std::unique_ptr<ByteSource> compressed, Compression compression,
                     std::vector<AccessPoint>* points = nullptr);

    size_t read(uint8_t* bytes, size_t capacity) override;
    /// Whether there are compressed bytes; the next content may need more of them.
    bool isReady(std::chrono::milliseconds patience) override
    {
        return m_begin != m_end || m_wasFull || m_packed->isReady(patience);
    }

    Place placeOf(uint64_t offset) const override { return {m_name, offset}; }
    bool isInterrupted() const override { return m_packed->isInterrupted(); }

private:
    bool fill();
    void notePoint();

    std::unique_ptr<ByteSource> m_packed;
    std::unique_ptr<Decompressor> m_decompressor;
    std::vector<AccessPoint>* m_accessPoints;
    std::string m_name; ///< of the compressed file
    std::vector<uint8_t> m_buffer;
    size_t m_begin = 0;           ///< of what is still to be decompressed
    size_t m_end = 0;             ///< of what is in the buffer
    uint64_t m_packedOffset = 0;  ///< in the compressed file, of the buffer's end
    uint64_t m_contentOffset = 0; ///< of what comes next
    Decompressor::Outcome m_last = Decompressor::Outcome::Complete;
    bool m_wasFull = false; ///< the last step had no room left, so more may be available
    std::string m_failure;
};

} // namespace tqx
