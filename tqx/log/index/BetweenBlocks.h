#pragma once

#include "tqx/log/index/Index.h"
#include "tqx/log/source/RandomAccess.h"
#include "tqx/log/stream/BlockStream.h"
#include "tqx/log/stream/StreamListener.h"
#include "tqx_log_export.h"

#include <memory>

namespace tqx
{

/// What is between the blocks of an indexed log, reported piece by piece: the neighbours of the
/// blocks and the damage, in the order of the log, exactly as a BlockStream over the whole log
/// would. Reads only the bytes that belong to no block. Used by one thread.
class TQX_LOG_API BetweenBlocks
{
public:
    /// Owns nothing; all arguments must outlive the object. The listener may be null. `log` must be
    /// the log that was indexed.
    BetweenBlocks(const Index& index, const RandomAccess& log, StreamListener* listener);
    ~BetweenBlocks();
    BetweenBlocks(const BetweenBlocks&) = delete;
    BetweenBlocks& operator=(const BetweenBlocks&) = delete;

    /// Reports what comes before the block at `offset` and has not been reported. Throws
    /// SourceError when the log cannot be read, and what the listener throws.
    void reportBefore(uint64_t offset);

    /// Reports the rest. Throws as reportBefore().
    void reportAll();

    /// Counts of what has been reported, and of the bytes and blocks of the whole log;
    /// `undecodable` is 0.
    const StreamCounts& getCounts() const;

private:
    class Scan;

    std::unique_ptr<Scan> m_scan;
};

/// Reports the neighbours of the blocks in an indexed log and its damage to `listener` (which may
/// be null), in the order of the log, exactly as a BlockStream over the whole log would, and
/// returns what that would count; `undecodable` is 0. Reads only the bytes that belong to no block.
/// `log` must be what was indexed. Throws SourceError when it cannot be read, and what the listener
/// throws.
TQX_LOG_API StreamCounts reportBetweenBlocks(const Index& index, const RandomAccess& log,
                                             StreamListener* listener);

} // namespace tqx
