#include "BlockStream.h"

#include "TQX_codec.h"
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

BlockStream::BlockStream(const std::string& path, bool report)
    : input(path), progress(input.getName(), input.getSize()), framer(this), piece(pieceSize),
      reportDamage(report)
{
}

bool BlockStream::next(Block& block)
{
    framer.takeBlock();
    while (!framer.hasBlock()) {
        if (ended) {
            closeGap();
            return false;
        }
        readOn();
    }
    const BlockFramer::Block found = framer.block();
    closeGap();
    ++counts.blocks;
    block = {found.data, static_cast<uint16_t>(found.size), found.offset};
    return true;
}

void BlockStream::reportUndecodable(const Block& block, int32_t code)
{
    ++counts.undecodable;
    if (reportDamage)
        words::sayAt(input.getName(), block.offset,
                     fmt::format("{}: {} ({})", describeBlock(block.getNumber()),
                                 TQX_errorName(code), code));
}

void BlockStream::readOn()
{
    if (beforeRead)
        beforeRead();
    const size_t size = input.read(piece.data(), piece.size());
    if (size == 0) {
        ended = true;
        framer.flush();
        return;
    }
    counts.bytes += size;
    progress.update(counts.bytes);
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
    if (reportDamage && gap.bytes != 0) {
        std::string why = plural(gap.bytes, "byte belongs", "bytes belong") + " to no block";
        if (gap.crcErrors != 0)
            why += ", " + plural(gap.crcErrors, "bad checksum", "bad checksums");
        if (gap.invalidLengths != 0)
            why += ", " + plural(gap.invalidLengths, "invalid length", "invalid lengths");
        words::sayAt(input.getName(), gap.offset, why);
    }
    gap = Gap();
}

} // namespace tool
