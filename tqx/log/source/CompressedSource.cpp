#include "tqx/log/source/CompressedSource.h"

#include "tqx/log/DataError.h"

#include <fmt/format.h>

#include <utility>

namespace tqx
{

namespace
{

using Outcome = Decompressor::Outcome;

constexpr size_t bufferSize = 1 << 16;

} // namespace

CompressedSource::CompressedSource(std::unique_ptr<ByteSource> compressed, Compression compression,
                                   std::vector<AccessPoint>* points)
    : packed(std::move(compressed)), decompressor(Decompressor::make(compression)),
      accessPoints(points), name(packed->placeOf(0).file), buffer(bufferSize)
{
    if (accessPoints != nullptr)
        decompressor->setStopsAtPoints();
}

/// False at the end of the compressed bytes.
bool CompressedSource::fill()
{
    begin = 0;
    end = 0;
    end = packed->read(buffer.data(), buffer.size());
    packedOffset += end;
    return end != 0;
}

void CompressedSource::notePoint()
{
    const uint64_t before = accessPoints->empty() ? 0 : accessPoints->back().content;
    AccessPoint point;
    if (contentOffset - before < pointDistance || !decompressor->getPoint(point))
        return;
    point.packed = packedOffset - (end - begin);
    point.content = contentOffset;
    accessPoints->push_back(std::move(point));
}

size_t CompressedSource::read(uint8_t* bytes, size_t capacity)
{
    if (capacity == 0)
        return 0;
    while (failure.empty()) {
        if (begin == end && !wasFull && !fill()) {
            if (last == Outcome::Complete || packed->isInterrupted())
                return 0;
            failure = fmt::format("the {} stream ends too early", decompressor->getFormat());
            break;
        }
        Decompressor::Step step = {buffer.data() + begin, end - begin, bytes, capacity};
        last = decompressor->decompress(step);
        begin = end - step.inputSize;
        wasFull = step.outputSize == 0;
        const size_t count = capacity - step.outputSize;
        contentOffset += count;
        if (last == Outcome::Damaged)
            failure = fmt::format("the {} stream is damaged", decompressor->getFormat());
        else if (last == Outcome::Exhausted)
            failure = fmt::format("bytes that are no {} stream follow its end",
                                  decompressor->getFormat());
        else if (accessPoints != nullptr)
            notePoint();
        if (count != 0)
            return count;
    }
    const uint64_t at = packedOffset - (end - begin);
    throw SourceError(fmt::format("{}: {}: {}", name, at, failure));
}

} // namespace tqx
