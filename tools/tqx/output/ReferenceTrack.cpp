#include "output/ReferenceTrack.h"

#include "tqx/gnss/position/PositionBlocks.h"
#include "tqx/gnss/position/SourceChoice.h"
#include "tqx/log/record/RecordDecoder.h"

#include <map>
#include <utility>

namespace tqx::tool
{

std::vector<quality::Reference::TimedPlace> readReferenceTrack(BlockStream& stream)
{
    RecordDecoder decoder;
    SourceChoice choice;
    std::map<const PositionSource*, std::vector<quality::Reference::TimedPlace>> places;
    for (Block block = {}; stream.next(block);) {
        Position position;
        if (!positionSource(block.getNumber()) || decoder.decode(block) <= 0 ||
            !readPosition(decoder.getRecord(), position) || position.fix == Fix::None)
            continue;
        choice.take(position);
        std::vector<quality::Reference::TimedPlace>& list = places[position.source];
        if (list.empty() || position.time > list.back().time) {
            list.push_back(
                {position.time, {position.latitude, position.longitude, position.height}});
        }
    }
    if (!choice.best())
        return {};
    return std::move(places[choice.best()]);
}

} // namespace tqx::tool
