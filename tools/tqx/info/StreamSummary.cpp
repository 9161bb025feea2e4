#include "StreamSummary.h"

namespace tool
{

void StreamSummary::add(BlockStream& stream, const Block& block)
{
    TypeSummary& type = types[block.getNumber()];
    ++blocks;
    ++type.blocks;
    type.bytes += block.size;
    if (TQX_recordType(block.getNumber()) == 0) {
        ++unknown;
        return;
    }
    if (const int32_t result = decoder.decode(block); result < 0) {
        ++type.failures[result];
        stream.reportUndecodable(block, result);
        return;
    }
    if (const std::optional<GnssMillis> time = block.getTime()) {
        type.intervals.add(*time);
        last = time;
        if (!first)
            first = time;
    }
}

} // namespace tool
