#pragma once

#include "BlockStream.h"
#include "Intervals.h"
#include "RecordDecoder.h"

#include <cstdint>
#include <map>
#include <optional>

namespace tool
{

/// What is known of the blocks of one number.
struct TypeSummary {
    uint64_t blocks = 0;
    uint64_t bytes = 0;
    Intervals intervals;
    std::map<int32_t, uint64_t> failures; ///< blocks that do not decode, by code
};

/// What a stream holds, gathered block by block.
class StreamSummary
{
public:
    /// Decodes and counts a block.
    void add(BlockStream& stream, const Block& block);

    /// By block number; unknown ones are among them.
    const std::map<uint16_t, TypeSummary>& getTypes() const { return types; }

    uint64_t getBlocks() const { return blocks; }

    /// Blocks of numbers that no type has.
    uint64_t getUnknown() const { return unknown; }

    /// Times of the first and the last block that has one.
    const std::optional<GnssMillis>& getFirst() const { return first; }
    const std::optional<GnssMillis>& getLast() const { return last; }

private:
    RecordDecoder decoder;
    std::map<uint16_t, TypeSummary> types;
    uint64_t blocks = 0;
    uint64_t unknown = 0;
    std::optional<GnssMillis> first;
    std::optional<GnssMillis> last;
};

} // namespace tool
