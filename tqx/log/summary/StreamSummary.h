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

/// Blocks of a type that fail to decode with one code.
struct FailureSummary {
    uint64_t blocks = 0;
    std::string file; ///< of the first one
    uint64_t offset = 0;
};

/// What is known about the blocks of one number.
struct TypeSummary {
    /// See Intervals and EpochSet for the rooms.
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

/// A summary of a stream, gathered block by block, in bounded memory. Used by one thread at a time.
/// Returned references live as long as this object and change with it.
class TQX_LOG_API StreamSummary
{
public:
    /// For blocks of the schema's types.
    explicit StreamSummary(const Schema& schema = {});

    const Schema& getSchema() const { return m_schema; }

    /// Decodes and counts a block. One that does not decode is reported to the stream. Throws
    /// std::bad_alloc; the block may then have been counted partly.
    void add(BlockStream& stream, const Block& block);

    /// Records where bytes belong to no block; only the first thousand places are kept.
    void addDamage(const StreamGap& gap);

    /// Counts what came between blocks.
    void addNeighbour(const Neighbour& neighbour) { m_neighbours.add(neighbour); }

    /// By block number, unknown ones included.
    std::map<uint16_t, const TypeSummary*> getTypes() const;

    /// Blocks of numbers that no type has.
    uint64_t getUnknown() const;

    /// The first places of damage, and how many there are.
    const std::vector<StreamGap>& getDamage() const { return m_damage; }
    uint64_t getDamagedPlaces() const { return m_damagedPlaces; }

    /// The first thousand blocks that do not decode, and those of unknown numbers.
    const std::vector<BlockPlace>& getUndecodablePlaces() const { return m_undecodablePlaces; }
    const std::vector<BlockPlace>& getUnknownPlaces() const { return m_unknownPlaces; }

    const NeighbourSummary& getNeighbours() const { return m_neighbours; }

    /// The earliest and the latest time of a block.
    const std::optional<GnssMillis>& getFirst() const { return m_first; }
    const std::optional<GnssMillis>& getLast() const { return m_last; }

    /// How often time runs back, and the first block that is earlier than the previous one of its
    /// type. Several types that go back together are one step.
    uint64_t getStepsBack() const { return m_stepsBack; }
    const BlockPlace& getFirstStepBack() const { return m_firstStepBack; }

    /// Number of times at which blocks of a type recur after later ones of that type; each time
    /// counts once.
    uint64_t getRepeatedEpochs() const { return m_repeatedEpochs; }

    /// The intervals between blocks of any type. The usual one is their own, or else that of the
    /// type with the most blocks, if it has one.
    const Intervals& getIntervals() const { return m_intervals; }
    std::optional<uint64_t> getUsualInterval() const;

private:
    void addTime(const BlockStream& stream, const Block& block, TypeSummary& type, GnssMillis time);

    size_t m_roomForIntervals = 200000; // a gap takes up to two
    size_t m_roomForEpochs = 100000;
    Schema m_schema;
    RecordDecoder m_decoder;
    std::vector<std::unique_ptr<TypeSummary>> m_types; ///< by block number
    std::vector<StreamGap> m_damage;
    uint64_t m_damagedPlaces = 0;
    NeighbourSummary m_neighbours;
    std::optional<GnssMillis> m_first;
    std::optional<GnssMillis> m_last;
    std::optional<GnssMillis> m_latest; ///< since time ran back
    Intervals m_intervals{m_roomForIntervals};
    uint64_t m_stepsBack = 0;
    BlockPlace m_firstStepBack;
    EpochSet m_repeated{m_roomForEpochs};
    uint64_t m_repeatedEpochs = 0;
    std::vector<BlockPlace> m_undecodablePlaces;
    std::vector<BlockPlace> m_unknownPlaces;
};

} // namespace tqx
