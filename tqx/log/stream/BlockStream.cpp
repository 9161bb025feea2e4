#include "tqx/log/stream/BlockStream.h"

namespace tqx
{

namespace
{

constexpr size_t pieceSize = 1 << 18;

} // namespace

BlockStream::BlockStream(ByteSource& bytes, StreamListener* hears)
    : source(bytes), listener(hears), framer(this), piece(pieceSize)
{
}

bool BlockStream::next(Block& block)
{
    framer.takeBlock();
    while (!framer.hasBlock()) {
        if (ended) {
            gap.isCut = isCut;
            closeGap();
            return false;
        }
        readOn();
    }
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

void BlockStream::readOn()
{
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

void BlockStream::onChecksumFailed(uint64_t)
{
    ++counts.crcErrors;
    ++gap.crcErrors;
}

void BlockStream::onInvalidLength(uint64_t)
{
    ++counts.invalidLengths;
    ++gap.invalidLengths;
}

// One stretch may be reported in several pieces.
void BlockStream::onBytesDropped(uint64_t offset, uint64_t count)
{
    counts.droppedBytes += count;
    if (gap.bytes == 0)
        gap.offset = offset;
    gap.bytes += count;
}

void BlockStream::closeGap()
{
    if (gap.bytes != 0 && listener) {
        const ByteSource::Place place = source.placeOf(gap.offset);
        gap.file = place.file;
        gap.offset = place.offset;
        listener->onGap(gap);
    }
    gap = StreamGap();
}

} // namespace tqx
