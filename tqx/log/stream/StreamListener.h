#pragma once

#include "tqx/log/mixed/Neighbour.h"
#include "tqx/log/stream/Block.h"
#include "tqx_log_export.h"

#include <cstdint>
#include <string>

namespace tqx
{

/// A stretch of bytes that belongs to no block and no neighbour.
struct TQX_LOG_API StreamGap {
    std::string file;
    uint64_t offset = 0; ///< in the file that it begins in
    uint64_t bytes = 0;
    uint64_t crcErrors = 0;
    uint64_t invalidLengths = 0;
    bool isCut = false; ///< the input ends where more was expected

    /// "33 bytes belong to no block, 1 bad checksum"
    std::string describe() const;
};

/// Receives everything in a stream that is not a valid block. Called while a BlockStream works.
class TQX_LOG_API StreamListener
{
public:
    virtual ~StreamListener();

    /// Called once for each stretch of damage.
    virtual void onGap(const StreamGap& gap) = 0;

    /// A sentence, frame or line of text between the blocks of `file`, with its offset there. Its
    /// bytes are valid until this returns. Does nothing by default.
    virtual void onNeighbour(const std::string& file, const Neighbour& neighbour);

    /// A block of `file` that the codec refused with `code`.
    virtual void onUndecodable(const std::string& file, const Block& block, int32_t code) = 0;

protected:
    StreamListener() = default;
    StreamListener(const StreamListener&) = default;
    StreamListener& operator=(const StreamListener&) = default;
};

} // namespace tqx
