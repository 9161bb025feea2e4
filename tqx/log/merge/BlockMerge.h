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
///   first one if they begin it. So does a block that is earlier than those before it in its
///   stream, if by no more than a minute: blocks of one epoch may have different times.
/// - Among blocks of one time, those of the first stream come first. The blocks of each stream keep
///   their order.
/// - A block that is identical to one already handed out for the same time is left out. Of blocks
///   without time as many remain, after one time, as the stream has that repeats them most.
/// - Where the time of a stream runs back by more than a minute, what follows is sorted in from
///   that time on: at once, before what is left of the other streams. The result then runs back,
///   too, and what was handed out more than a minute of time away is not recognised when it comes
///   again.
///
/// Reads each stream once. Memory: what each stream keeps, up to 64 MiB for the blocks of the last
/// minute of time, and 16 MiB a stream for blocks at its start that have no time; beyond those they
/// are handed out first.
class TQX_LOG_API BlockMerge
{
public:
    /// Where the time of a stream runs back.
    struct StepBack {
        size_t input;
        const Block& block; ///< the first one after it
        GnssMillis millis;
    };

    /// The streams must outlive this, and are read by nobody else.
    explicit BlockMerge(const std::vector<BlockStream*>& inputs);
    ~BlockMerge();
    BlockMerge(const BlockMerge&) = delete;
    BlockMerge& operator=(const BlockMerge&) = delete;

    /// Has `listener` called for every step back.
    void setStepBackListener(std::function<void(const StepBack&)> listener);

    /// Gets the next block, whose bytes stay valid until the next call; false at the end. Throws
    /// what the sources throw, and std::bad_alloc.
    bool next(Block& block);

    /// The stream that the last block is from, counted from 0.
    size_t getInput() const;

    /// Blocks that were left out so far.
    uint64_t getDuplicates() const;

private:
    class Core;

    std::unique_ptr<Core> m_core;
};

} // namespace tqx
