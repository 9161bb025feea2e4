#pragma once

#include "io/InputSequence.h"
#include "io/Words.h"
#include "tqx/log/index/BetweenBlocks.h"
#include "tqx/log/index/IndexedLog.h"
#include "tqx/log/stream/BlockStream.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tqx::tool
{

/// The blocks of the inputs of a command. Damage is reported to standard error with its offset.
class InputStream : public InputSequence, private StreamListener, public BlockStream
{
public:
    /// "-" among the paths is standard input. A `quiet` one says nothing about damage and shows no
    /// progress; a `verbose` one names every damaged place, others the first ten.
    InputStream(std::vector<std::string> paths, bool quiet, bool verbose = false);

    /// Gets only the blocks of `query`, by the index of the only input, and reads nothing else of
    /// it but what belongs to no block. Before the first block is gotten.
    void useIndex(std::unique_ptr<IndexedLog> log, const BlockQuery& query);

    /// Whether blocks come by an index, those of its query alone.
    bool isIndexed() const { return m_indexed != nullptr; }

    bool next(Block& block) override;

    /// Has gaps handed to `listener` instead of reported to standard error; undecodable blocks are
    /// then only counted.
    void setGapListener(std::function<void(const StreamGap&)> action)
    {
        m_gapListener = std::move(action);
    }

    /// Has `action` called for every sentence, frame and line of text between the blocks.
    void setNeighbourListener(std::function<void(const Neighbour&)> action)
    {
        m_neighbourListener = std::move(action);
    }

    /// Reports the number of damaged places that were not named, if there are any.
    void sumUpDamage();

private:
    void onGap(const StreamGap& gap) override;
    void onNeighbour(const std::string& file, const Neighbour& neighbour) override;
    void onUndecodable(const std::string& file, const Block& block, int32_t code) override;

    /// An input that is read by its index.
    struct Indexed {
        std::unique_ptr<IndexedLog> log;
        IndexedBlocks blocks;
        BetweenBlocks between;
    };

    std::unique_ptr<Indexed> m_indexed; ///< null when all is read
    std::function<void(const StreamGap&)> m_gapListener;
    std::function<void(const Neighbour&)> m_neighbourListener;
    bool m_quiet;
    words::Limit m_limit;
    StreamGap m_others;              ///< the sum of the gaps that were not named
    uint64_t m_otherUndecodable = 0; ///< blocks that were not named
};

} // namespace tqx::tool
