#include "tqx/log/inspect/BlockLocator.h"

#include "tqx/framing/BlockFramer.h"
#include "tqx/log/DataError.h"
#include "tqx/log/stream/Block.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>

namespace tqx
{

namespace
{

constexpr uint64_t largestBlock = std::numeric_limits<uint16_t>::max();

/// Takes over what the piece has of the wanted bytes. `position` is that of the piece.
void collect(BlockLocation& location, const uint8_t* piece, uint64_t size, uint64_t position)
{
    const uint64_t wanted = location.offset + location.bytes.size();
    const uint64_t end = std::min(position + size, location.offset + largestBlock);
    if (wanted >= position && wanted < end)
        location.bytes.insert(location.bytes.end(), piece + (wanted - position),
                              piece + (end - position));
}

/// Looks at the blocks that are at hand; true once one begins behind the place.
bool takeBlocks(BlockFramer& framer, uint64_t framed, BlockLocation& location)
{
    for (; framer.hasBlock(); framer.takeBlock()) {
        const BlockFramer::Block found = framer.block();
        const Block block = {found.data, static_cast<uint16_t>(found.size), framed + found.offset};
        const BlockLocation::Neighbour neighbour = {block.offset, block.getNumber(), block.size};
        if (block.offset > location.offset) {
            location.following = neighbour;
            return true;
        }
        if (location.offset < block.offset + block.size)
            location.around = neighbour;
    }
    return false;
}

} // namespace

BlockLocation locateBlock(ByteSource& source, uint64_t offset)
{
    BlockLocation location = {source.placeOf(0).file, offset, {}, std::nullopt, std::nullopt};
    // Whatever block the place lies in begins here at the earliest.
    const uint64_t framed = offset - std::min(offset, largestBlock);
    uint64_t position = source.skip(framed);
    BlockFramer framer;
    std::vector<uint8_t> piece(1 << 18);
    bool found = false;
    for (;;) {
        const size_t size = source.read(piece.data(), piece.size());
        if (size == 0)
            break;
        collect(location, piece.data(), size, position);
        position += size;
        framer.append(piece.data(), size);
        found = found || takeBlocks(framer, framed, location);
        if (found && location.bytes.size() == largestBlock)
            return location;
    }
    if (location.bytes.empty())
        throw SourceError(
            fmt::format("{}: {}: the input has {} bytes only", location.file, offset, position));
    framer.flush();
    if (!found)
        takeBlocks(framer, framed, location);
    return location;
}

} // namespace tqx
