#include "tqx/log/stream/BlockStream.h"

#include "korcg_load.h"
#include "tqx/log/stream/HeaderCheck.h"

namespace tqx
{

namespace
{

constexpr size_t pieceSize = 1 << 18;

} // namespace

BlockStream::BlockStream(ByteSource& bytes, StreamListener* hears)
    : source(bytes), listener(hears), framer(this), scanner(*this), piece(pieceSize)
{
}

bool BlockStream::next(Block& block)
{
    framer.takeBlock();
    while (!framer.hasBlock()) {
        if (ended) {
            if (!source.isInterrupted())
                scanner.end();
            gap.isCut = isCut;
            closeGap();
            return false;
        }
        readOn();
    }
    scanner.end();
    closeGap();
    ++counts.blocks;
    const BlockFramer::Block found = framer.block();
    const ByteSource::Place place = source.placeOf(found.offset);
    if (name != place.file)
        name = place.file;
    block = {found.data, static_cast<uint16_t>(found.size), place.offset};
    return true;
}

void BlockStream::reportUndecodable(const Block& block, int32_t code)
{
    ++counts.undecodable;
    if (listener)
        listener->onUndecodable(name, block, code);
}

/// Passes candidates that look false by themselves; true when there is a block then.
bool BlockStream::passDoubtful()
{
    while (!framer.hasBlock()) {
        const BlockFramer::Candidate candidate = framer.waiting();
        if (candidate.data == nullptr ||
            isPlausibleHeader(korcg_load_u16(candidate.data + 4), candidate.length) ||
            !framer.passWaiting())
            return false;
    }
    return true;
}

/// Passes whatever waits once the source has been silent; true when there is a block then.
bool BlockStream::passAfterPause()
{
    if (framer.waiting().data == nullptr || source.isReady(*longestPause))
        return false;
    while (!framer.hasBlock() && framer.passWaiting()) {
    }
    return framer.hasBlock();
}

void BlockStream::readOn()
{
    if (longestPause && (passDoubtful() || passAfterPause()))
        return;
    const size_t size = source.read(piece.data(), piece.size());
    if (size != 0) {
        counts.bytes += size;
        framer.append(piece.data(), size);
        return;
    }
    ended = true;
    if (source.isInterrupted())
        return; // that it ends within a block is no damage
    isCut = framer.bytesLeft() != 0;
    framer.flush();
}

void BlockStream::onChecksumFailed(uint64_t offset)
{
    falseBlocks.push_back({offset, false});
}

void BlockStream::onInvalidLength(uint64_t offset)
{
    falseBlocks.push_back({offset, true});
}

// Its bytes are what counts.
void BlockStream::onBytesDropped(uint64_t, uint64_t) {}

void BlockStream::onDroppedPiece(uint64_t offset, const uint8_t* bytes, size_t size)
{
    scanner.append(offset, bytes, size);
}

void BlockStream::onRecognised(const Neighbour& neighbour)
{
    closeGap();
    counts.neighbours[static_cast<size_t>(neighbour.kind)].add(neighbour);
    while (!falseBlocks.empty() && falseBlocks.front().offset < neighbour.offset + neighbour.size)
        falseBlocks.pop_front();
    if (!listener)
        return;
    const ByteSource::Place place = source.placeOf(neighbour.offset);
    listener->onNeighbour(place.file,
                          {neighbour.kind, neighbour.data, neighbour.size, place.offset});
}

// One stretch may be reported in several pieces.
void BlockStream::onDamage(uint64_t offset, uint64_t count)
{
    counts.droppedBytes += count;
    if (gap.bytes == 0)
        gap.offset = offset;
    gap.bytes += count;
    for (; !falseBlocks.empty() && falseBlocks.front().offset < offset + count;
         falseBlocks.pop_front()) {
        const bool isTooShort = falseBlocks.front().isTooShort;
        ++(isTooShort ? counts.invalidLengths : counts.crcErrors);
        ++(isTooShort ? gap.invalidLengths : gap.crcErrors);
    }
}

void BlockStream::closeGap()
{
    if (gap.bytes == 0)
        return;
    if (listener) {
        const ByteSource::Place place = source.placeOf(gap.offset);
        gap.file = place.file;
        gap.offset = place.offset;
        listener->onGap(gap);
    }
    gap = StreamGap();
}

} // namespace tqx
