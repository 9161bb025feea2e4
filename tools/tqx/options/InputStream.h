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
    /// "-" among the paths is standard input. With `quiet`, no damage is reported and no progress
    /// shown; with `verbose`, every damaged place is reported, else the first ten.
    InputStream(std::vector<std::string> paths, bool quiet, bool verbose = false);

    /// Returns only the blocks of `query`, by the index of the only input, and reads nothing else
    /// of it except what belongs to no block. To be called before the first next().
    void useIndex(std::unique_ptr<IndexedLog> log, const BlockQuery& query);

    /// Whether only the blocks of a query are returned, by an index.
    bool isIndexed() const { return m_indexed != nullptr; }

    bool next(Block& block) override;

    /// Passes gaps to `listener` instead of reporting them on standard error; undecodable blocks
    /// are then only counted.
    void setGapListener(std::function<void(const StreamGap&)> action)
    {
        m_gapListener = std::move(action);
    }

    /// Sets an action to call for every sentence, frame and line of text between the blocks.
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
