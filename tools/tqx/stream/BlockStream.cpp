#include "BlockStream.h"

#include "Interrupt.h"
#include "TQX_codec.h"
#include "ToolError.h"
#include "Words.h"
#include "korcg_load.h"

#include <fmt/format.h>

namespace tool
{

namespace
{

constexpr size_t pieceSize = 1 << 18;

std::string plural(uint64_t count, const char* one, const char* many)
{
    return fmt::format("{} {}", count, count == 1 ? one : many);
}

} // namespace

std::string describeBlock(uint16_t number)
{
    using namespace Kor::MessageApi;
    const TQX_TypeLayout* layout = TQX_layout(TQX_recordType(number));
    return layout ? fmt::format("{} ({})", layout->name, number) : fmt::format("block {}", number);
}

std::optional<GnssMillis> Block::getTime() const
{
    constexpr size_t headerSize = 14;
    if (size < headerSize)
        return std::nullopt;
    return gnssMillis(korcg_load_u32(data + 8), korcg_load_u16(data + 12));
}

std::string StreamGap::describe() const
{
    std::string why = plural(bytes, "byte belongs", "bytes belong") + " to no block";
    if (crcErrors != 0)
        why += ", " + plural(crcErrors, "bad checksum", "bad checksums");
    if (invalidLengths != 0)
        why += ", " + plural(invalidLengths, "invalid length", "invalid lengths");
    if (isCut)
        why += ", the input ends within a block";
    return why;
}

BlockStream::BlockStream(std::vector<std::string> inputs, bool isSilent)
    : paths(std::move(inputs)), progress(std::in_place, paths, !isSilent), framer(this),
      piece(pieceSize), quiet(isSilent)
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
    block = {found.data, static_cast<uint16_t>(found.size),
             found.offset - partAt(found.offset).start};
    return true;
}

void BlockStream::reportUndecodable(const Block& block, int32_t code)
{
    ++counts.undecodable;
    if (!quiet && !gapListener)
        words::sayAt(getName(), block.offset,
                     fmt::format("{}: {} ({})", describeBlock(block.getNumber()),
                                 TQX_errorName(code), code));
}

/// Where the byte at an offset of the stream stands. Offsets only go up from call to call.
const BlockStream::Part& BlockStream::partAt(uint64_t offset)
{
    while (parts.size() > 1 && parts[1].start <= offset)
        parts.pop_front();
    return parts.front();
}

/// False when there are no more inputs.
bool BlockStream::openNext()
{
    if (opened == paths.size() || interrupt::hasCome())
        return false;
    try {
        input.emplace(paths[opened++]);
        progress->setName(input->getName());
        names.push_back(input->getName());
        parts.push_back({input->getName(), counts.bytes});
    } catch (const InputError& error) {
        words::say(error.what());
        failed = true;
    }
    return true;
}

/// Bytes read, 0 at the end of the input at hand.
size_t BlockStream::readPiece()
{
    try {
        return input->read(piece.data(), piece.size());
    } catch (const InputError& error) {
        words::say(error.what());
        failed = true;
        return 0;
    }
}

/// What has come is handed on when nothing follows at once, and in a steady stream now and then.
void BlockStream::handOn()
{
    constexpr int patience = 20; // milliseconds
    constexpr std::chrono::milliseconds longest(100);
    if (!beforeRead || (input && input->isReady(patience) && Clock::now() - handedOn < longest))
        return;
    beforeRead();
    handedOn = Clock::now();
}

void BlockStream::readOn()
{
    handOn();
    if (!input && !openNext()) {
        ended = true;
        progress.reset();
        if (interrupt::hasCome())
            return; // that it ends within a block is no damage
        isCut = framer.bytesLeft() != 0;
        framer.flush();
    }
    if (!input)
        return;
    const size_t size = readPiece();
    if (size == 0) {
        input.reset();
        return;
    }
    counts.bytes += size;
    progress->add(size);
    framer.append(reinterpret_cast<const uint8_t*>(piece.data()), size);
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

// One stretch may be told in several pieces.
void BlockStream::onBytesDropped(uint64_t offset, uint64_t count)
{
    counts.droppedBytes += count;
    if (gap.bytes == 0)
        gap.offset = offset;
    gap.bytes += count;
}

void BlockStream::closeGap()
{
    if (gap.bytes != 0 && (gapListener || !quiet)) {
        const Part& part = partAt(gap.offset);
        gap.file = part.name;
        gap.offset -= part.start;
        if (gapListener)
            gapListener(gap);
        else
            words::sayAt(gap.file, gap.offset, gap.describe());
    }
    gap = StreamGap();
}

} // namespace tool
