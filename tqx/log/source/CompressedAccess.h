#pragma once

#include "tqx/log/source/Decompressor.h"
#include "tqx/log/source/RandomAccess.h"
#include "tqx_log_export.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace tqx
{

/// The content of a compressed file, with random access: decompression starts from the access point
/// before the requested offset, or from the start if there is none. Continuing where the last read
/// ended is cheapest. Several threads may read, but wait for each other.
class TQX_LOG_API CompressedAccess : public RandomAccess
{
public:
    /// `packed` is not owned and must outlive the object. `points` ascend; `contentSize` is the
    /// size of the whole content. Wrong points make reads fail or return wrong bytes. Throws
    /// DataError when there is no memory to decompress with.
    CompressedAccess(const RandomAccess& packed, Compression compression,
                     std::vector<AccessPoint> points, uint64_t contentSize);

    const std::string& getName() const override { return m_packed.getName(); }
    uint64_t getSize() const override { return m_size; }
    size_t readAt(uint64_t offset, uint8_t* bytes, size_t count) const override;

private:
    void goTo(uint64_t offset) const;
    size_t readOn(uint8_t* bytes, size_t count) const;
    [[noreturn]] void fail(const char* reason) const;

    const RandomAccess& m_packed;
    Compression m_compression;
    std::vector<AccessPoint> m_accessPoints;
    uint64_t m_size;

    mutable std::mutex m_mutex;
    mutable std::unique_ptr<Decompressor> m_decompressor; ///< null: not at any position
    mutable uint64_t m_contentOffset = 0;                 ///< of what comes next
    mutable uint64_t m_packedOffset = 0;                  ///< of the buffer's end
    mutable std::vector<uint8_t> m_buffer;
    mutable size_t m_begin = 0; ///< of what is still to be decompressed
    mutable size_t m_end = 0;   ///< of what is in the buffer
};

} // namespace tqx
