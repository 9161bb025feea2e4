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
