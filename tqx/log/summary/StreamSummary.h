#pragma once

#include "tqx/log/record/RecordDecoder.h"
#include "tqx/log/stream/BlockStream.h"
#include "tqx/log/summary/Intervals.h"
#include "tqx/log/summary/NeighbourSummary.h"

#include <bitset>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tqx
{

/// Blocks of a type that do not decode, of one code.
struct FailureSummary {
    uint64_t blocks = 0;
    std::string file; ///< of the first one
    uint64_t offset = 0;
};

/// What is known of the blocks of one number.
struct TypeSummary {
    uint64_t blocks = 0;
    uint64_t bytes = 0;
    bool isKnown = false;
    std::bitset<8> revisions;
    Intervals intervals;
    std::map<int32_t, FailureSummary> failures; ///< by code
};

/// What a stream holds, gathered block by block.
class StreamSummary
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

    const NeighbourSummary& getNeighbours() const { return neighbours; }

    /// Times of the first and the last block that has one.
    const std::optional<GnssMillis>& getFirst() const { return first; }
    const std::optional<GnssMillis>& getLast() const { return last; }

private:
    RecordDecoder decoder;
    std::vector<std::unique_ptr<TypeSummary>> types; ///< by block number
    std::vector<StreamGap> damage;
    uint64_t damagedPlaces = 0;
    NeighbourSummary neighbours;
    std::optional<GnssMillis> first;
    std::optional<GnssMillis> last;
};

} // namespace tqx
