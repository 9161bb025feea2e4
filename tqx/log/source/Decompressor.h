#pragma once

#include "tqx_log_export.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace tqx
{

/// A place in a compressed file from which its content can be decompressed without what comes
/// before.
struct AccessPoint {
    uint64_t packed = 0;         ///< offset in the compressed file of the first byte that is needed
    uint64_t content = 0;        ///< offset in the content of what comes first
    uint8_t bits = 0;            ///< bits of the preceding byte that are needed too, 0 to 7
    std::vector<uint8_t> window; ///< preceding content that is referred to, as a zlib stream
};

/// The supported forms of compression.
enum class Compression : uint8_t { None = 0, Gzip = 1, Zstd = 2 };

/// The compression of a file that begins with these bytes; looks at 4 of them, or all if fewer.
TQX_LOG_API Compression compressionOf(const uint8_t* bytes, size_t count);

/// Whether a file that begins with these bytes may turn out to be compressed once more are known.
TQX_LOG_API bool mayBeCompressed(const uint8_t* bytes, size_t count);

/// Decompresses a stream step by step, in constant memory. Concatenated streams count as one.
class TQX_LOG_API Decompressor
{
public:
    /// Null for Compression::None. Throws DataError when there is no memory to decompress with.
    static std::unique_ptr<Decompressor> make(Compression compression);

    virtual ~Decompressor();
    Decompressor(const Decompressor&) = delete;
    Decompressor& operator=(const Decompressor&) = delete;

    /// For messages: "gzip".
    virtual const char* getFormat() const = 0;

    /// Bytes to decompress, and room for the result. A step moves both starts forward.
    struct Step {
        const uint8_t* input;
        size_t inputSize;
        uint8_t* output;
        size_t outputSize;
    };

    enum class Outcome {
        Going,     ///< more input or more room is needed
        Complete,  ///< all input so far is decompressed, and the content may end here
        Damaged,   ///< the input is not in the format
        Exhausted, ///< the content has ended, and something else follows
    };

    /// Decompresses until input or room are used up, or, if wanted, until a place that may be an
    /// access point.
    virtual Outcome decompress(Step& step) = 0;

    /// Makes decompress() stop at possible access points.
    void setStopsAtPoints() { m_stopsAtPoints = true; }

    /// Whether the place reached is an access point; `point` then receives its bits and window.
    /// Throws std::bad_alloc.
    virtual bool getPoint(AccessPoint& point) const = 0;

    /// Continues at a point. `byteBefore` is the byte before AccessPoint::packed, if bits of it are
    /// needed. False for an invalid point.
    virtual bool restart(const AccessPoint& point, uint8_t byteBefore) = 0;

protected:
    Decompressor() = default;

    bool m_stopsAtPoints = false;
};

} // namespace tqx
