#include "tqx/log/inspect/BlockLocator.h"

#include "korcg_load.h"
#include "tqx/framing/BlockFramer.h"
#include "tqx/framing/SyncSearch.h"
#include "tqx/log/DataError.h"
#include "tqx/log/stream/Block.h"
#include "tqx/log/stream/HeaderCheck.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>

namespace tqx
{

namespace
{

constexpr uint64_t largestBlock = std::numeric_limits<uint16_t>::max();

/// Takes over the bytes of the piece from the place on. `position` is that of the piece.
void collect(BlockLocation& location, const uint8_t* piece, uint64_t size, uint64_t position)
{
    const uint64_t wanted = location.place + location.bytes.size();
    const uint64_t end =
        std::min(position + size, location.place + BlockLocation::reach + largestBlock);
    if (wanted >= position && wanted < end) {
        location.bytes.insert(location.bytes.end(), piece + (wanted - position),
                              piece + (end - position));
    }
}

/// Looks at the available blocks; true once one begins after the place.
bool takeBlocks(BlockFramer& framer, uint64_t framed, BlockLocation& location)
{
    for (; framer.hasBlock(); framer.takeBlock()) {
        const BlockFramer::Block found = framer.block();
        const Block block = {found.data, static_cast<uint16_t>(found.size), framed + found.offset};
        const BlockLocation::Neighbour neighbour = {block.offset, block.getNumber(), block.size};
        if (block.offset > location.place) {
            location.following = neighbour;
            return true;
        }
        if (location.place < block.offset + block.size)
            location.around = neighbour;
    }
    return false;
}

/// Whether enough has been read: the next valid block, and all that a header before it can claim.
bool isDone(const BlockLocation& location, uint64_t position)
{
    const uint64_t end =
        location.following ? location.following->offset : location.place + BlockLocation::reach;
    return position >= std::min(end, location.place + BlockLocation::reach) + largestBlock;
}

/// Where the header in the damage is; nothing when there is none.
std::optional<uint64_t> findHeader(const BlockLocation& location, const Schema& schema)
{
    constexpr size_t headerSize = 8;
    std::optional<uint64_t> first;
    const uint8_t* bytes = location.bytes.data();
    for (uint64_t i = 0; i + 1 < location.damage; ++i) {
        i += findSync(bytes + i, location.damage - i);
        if (i + 1 >= location.damage)
            break;
        if (!first)
            first = i;
        if (i + headerSize <= location.bytes.size() &&
            isPlausibleHeader(korcg_load_u16(bytes + i + 4), korcg_load_u16(bytes + i + 6), schema))
            return i;
    }
    return first;
}

/// Moves on to the header in the damage, and drops bytes that no block from there on has.
void settle(BlockLocation& location, const Schema& schema)
{
    if (!location.around) {
        location.damage = location.bytes.size();
        if (location.following) {
            location.damage =
                std::min(location.damage, location.following->offset - location.place);
        }
        if (const std::optional<uint64_t> header = findHeader(location, schema);
            header && !location.hasSync()) {
            location.offset = location.place + *header;
            location.bytes.erase(location.bytes.begin(),
                                 location.bytes.begin() + static_cast<std::ptrdiff_t>(*header));
        }
    }
    location.bytes.resize(std::min<size_t>(location.bytes.size(), largestBlock));
}

} // namespace

BlockLocation locateBlock(ByteSource& source, uint64_t place, const Schema& schema)
{
    BlockLocation location = {source.placeOf(0).file, place, place, {}, 0, false, {}, {}};
    // Whatever block the place lies in begins here at the earliest.
    const uint64_t framed = place - std::min(place, largestBlock);
    uint64_t position = source.skip(framed);
    BlockFramer framer;
    std::vector<uint8_t> piece(1 << 18);
    bool found = false;
    while (!isDone(location, position)) {
        const size_t size = source.read(piece.data(), piece.size());
        if (size == 0) {
            framer.flush();
            break;
        }
        collect(location, piece.data(), size, position);
        position += size;
        framer.append(piece.data(), size);
        found = found || takeBlocks(framer, framed, location);
    }
    if (location.bytes.empty()) {
        throw SourceError(
            fmt::format("{}: {}: the input has only {} bytes", location.file, place, position));
    }
    location.isCutShort = isDone(location, position);
    if (!found)
        takeBlocks(framer, framed, location);
    settle(location, schema);
    return location;
}

} // namespace tqx
