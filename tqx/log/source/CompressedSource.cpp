#include "tqx/log/source/CompressedSource.h"

#include "tqx/log/DataError.h"

#include <fmt/format.h>

#include <utility>

namespace tqx
{

namespace
{

constexpr size_t bufferSize = 1 << 16;

} // namespace

CompressedSource::CompressedSource(std::unique_ptr<ByteSource> compressed, const char* method)
    : packed(std::move(compressed)), format(method), name(packed->placeOf(0).file),
      buffer(bufferSize)
{
}

ByteSource::Place CompressedSource::placeOf(uint64_t offset) const
{
    return {name, offset};
}

/// False at the end of the compressed bytes.
bool CompressedSource::fill()
{
    begin = 0;
    end = packed->read(buffer.data(), buffer.size());
    packedOffset += end;
    return end != 0;
}

size_t CompressedSource::read(uint8_t* bytes, size_t capacity)
{
    if (capacity == 0)
        return 0;
    while (failure.empty()) {
        if (begin == end && !wasFull && !fill()) {
            if (last == Outcome::Complete || packed->isInterrupted())
                return 0;
            failure = fmt::format("the {} stream ends too early", format);
            break;
        }
        Step step = {buffer.data() + begin, end - begin, bytes, capacity};
        last = decompress(step);
        begin = end - step.inputSize;
        wasFull = step.outputSize == 0;
        if (last == Outcome::Damaged)
            failure = fmt::format("the {} stream is damaged", format);
        else if (last == Outcome::Exhausted)
            failure = fmt::format("bytes that are no {} stream follow its end", format);
        if (step.outputSize != capacity)
            return capacity - step.outputSize;
    }
    const uint64_t at = packedOffset - (end - begin);
    throw SourceError(fmt::format("{}: {}: {}", name, at, failure));
}

} // namespace tqx
