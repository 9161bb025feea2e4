#pragma once

#include "tqx/log/stream/BlockStream.h"
#include "tqx_log_export.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace tqx
{

/// The blocks of several streams as one, by the times of their headers.
///
/// - Blocks without a time come after the one that they follow in their stream, and before the
///   first one if they begin it. So does a block that is up to a minute earlier than those before
///   it in its stream: blocks of one epoch may have different times.
/// - Among blocks of one time, those of the first stream come first. The blocks of each stream keep
///   their order.
/// - A block identical to one already returned for the same time is left out. Identical blocks
/// without a time remain, after one time, as often as in the stream that repeats them most.
/// - Where the time of a stream runs back by more than a minute, what follows is merged from that
/// time on: at once, before the rest of the other streams. The result then runs back, too, and
/// blocks returned more than a minute of time away are not recognised when they come again.
///
/// Reads each stream once. Memory: what each stream keeps, up to 64 MiB for the blocks of the last
/// minute of time, and 16 MiB per stream for blocks at its start that have no time; beyond that
/// they are returned first.
class TQX_LOG_API BlockMerge
{
public:
    /// Where the time of a stream runs back.
    struct StepBack {
        size_t input;
        const Block& block; ///< the first one after it
        GnssMillis millis;
    };

    /// The streams must outlive this object, and nothing else may read them.
    explicit BlockMerge(const std::vector<BlockStream*>& inputs);
    ~BlockMerge();
    BlockMerge(const BlockMerge&) = delete;
    BlockMerge& operator=(const BlockMerge&) = delete;

    /// Sets a listener to call for every step back.
    void setStepBackListener(std::function<void(const StepBack&)> listener);

    /// Gets the next block, whose bytes stay valid until the next call; false at the end. Throws
    /// what the sources throw, and std::bad_alloc.
    bool next(Block& block);

    /// Index of the stream that the last block is from.
    size_t getInput() const;

    /// Blocks that were left out so far.
    uint64_t getDuplicates() const;

private:
    class Core;

    std::unique_ptr<Core> m_core;
};

} // namespace tqx
