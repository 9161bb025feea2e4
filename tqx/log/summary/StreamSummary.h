#pragma once

#include "tqx/log/record/RecordDecoder.h"
#include "tqx/log/stream/BlockStream.h"
#include "tqx/log/summary/EpochSet.h"
#include "tqx/log/summary/Intervals.h"
#include "tqx/log/summary/NeighbourSummary.h"
#include "tqx_log_export.h"

#include <bitset>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tqx
{

/// Where a block begins.
struct BlockPlace {
    std::string file;
    uint64_t offset = 0;
    uint16_t number = 0;
    int32_t code = 0; ///< the codec's, when it refused the block
};

/// Blocks of a type that do not decode, of one code.
struct FailureSummary {
    uint64_t blocks = 0;
    std::string file; ///< of the first one
    uint64_t offset = 0;
};

/// What is known of the blocks of one number.
struct TypeSummary {
    /// For what the rooms are see Intervals and EpochSet.
    TypeSummary(size_t& roomForIntervals, size_t& roomForEpochs)
        : intervals(roomForIntervals), epochs(roomForEpochs)
    {
    }

    uint64_t blocks = 0;
    uint64_t bytes = 0;
    bool isKnown = false;
    std::bitset<8> revisions;
    Intervals intervals;
    EpochSet epochs;
    std::optional<GnssMillis> last;             ///< time of the last block
    uint64_t stepsBack = 0;                     ///< of the stream, when the last block came
    std::map<int32_t, FailureSummary> failures; ///< by code
};

/// What a stream holds, gathered block by block.
class TQX_LOG_API StreamSummary
{
public:
    StreamSummary();

    /// Decodes and counts a block.
    void add(BlockStream& stream, const Block& block);

    /// Notes where bytes belong to no block; only the first thousand places are kept.
    void addDamage(const StreamGap& gap);

    /// Counts what came between blocks.
    void addNeighbour(const Neighbour& neighbour) { neighbours.add(neighbour); }

    /// By block number; unknown ones are among them.
    std::map<uint16_t, const TypeSummary*> getTypes() const;

    /// Blocks of numbers that no type has.
    uint64_t getUnknown() const;

    /// The first places of damage, and how many there are.
    const std::vector<StreamGap>& getDamage() const { return damage; }
    uint64_t getDamagedPlaces() const { return damagedPlaces; }

    /// The first thousand blocks that do not decode, and those of unknown numbers.
    const std::vector<BlockPlace>& getUndecodablePlaces() const { return undecodablePlaces; }
    const std::vector<BlockPlace>& getUnknownPlaces() const { return unknownPlaces; }

    const NeighbourSummary& getNeighbours() const { return neighbours; }

    /// The earliest and the latest time of a block.
    const std::optional<GnssMillis>& getFirst() const { return first; }
    const std::optional<GnssMillis>& getLast() const { return last; }

    /// How often time runs back, and the first block that is earlier than the one of its type
    /// before it. Blocks of several types that go back together are one step.
    uint64_t getStepsBack() const { return stepsBack; }
    const BlockPlace& getFirstStepBack() const { return firstStepBack; }

    /// Times at which blocks of a type come again after others of that type; each counts once.
    uint64_t getRepeatedEpochs() const { return repeatedEpochs; }

    /// The intervals at which blocks of any type come. Their usual interval is their own or else
    /// that of the type with the most blocks, if it has one.
    const Intervals& getIntervals() const { return intervals; }
    std::optional<uint64_t> getUsualInterval() const;

private:
    void addTime(const BlockStream& stream, const Block& block, TypeSummary& type, GnssMillis time);

    size_t roomForIntervals = 200000; // a gap takes up to two
    size_t roomForEpochs = 100000;
    RecordDecoder decoder;
    std::vector<std::unique_ptr<TypeSummary>> types; ///< by block number
    std::vector<StreamGap> damage;
    uint64_t damagedPlaces = 0;
    NeighbourSummary neighbours;
    std::optional<GnssMillis> first;
    std::optional<GnssMillis> last;
    std::optional<GnssMillis> latest; ///< since time ran back
    Intervals intervals{roomForIntervals};
    uint64_t stepsBack = 0;
    BlockPlace firstStepBack;
    EpochSet repeated{roomForEpochs};
    uint64_t repeatedEpochs = 0;
    std::vector<BlockPlace> undecodablePlaces;
    std::vector<BlockPlace> unknownPlaces;
};

} // namespace tqx
