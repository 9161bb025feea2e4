#include "tqx/log/source/CompressedAccess.h"

#include "tqx/log/DataError.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace tqx
{

namespace
{

constexpr size_t bufferSize = 1 << 16;

} // namespace

CompressedAccess::CompressedAccess(const RandomAccess& compressed, Compression method,
                                   std::vector<AccessPoint> points, uint64_t contentSize)
    : packed(compressed), compression(method), accessPoints(std::move(points)), size(contentSize),
      buffer(bufferSize)
{
}

void CompressedAccess::fail(const char* reason) const
{
    decompressor.reset();
    throw SourceError(
        fmt::format("{}: {}: {}", packed.getName(), packedOffset - (end - begin), reason));
}

size_t CompressedAccess::readAt(uint64_t offset, uint8_t* bytes, size_t count) const
{
    if (offset >= size)
        return 0;
    const auto wanted = static_cast<size_t>(std::min<uint64_t>(count, size - offset));
    const std::lock_guard<std::mutex> lock(mutex);
    goTo(offset);
    for (size_t done = 0; done < wanted;)
        done += readOn(bytes + done, wanted - done);
    return wanted;
}

void CompressedAccess::goTo(uint64_t offset) const
{
    const auto after = std::upper_bound(
        accessPoints.begin(), accessPoints.end(), offset,
        [](uint64_t wanted, const AccessPoint& point) { return wanted < point.content; });
    const AccessPoint start;
    const AccessPoint& point = after == accessPoints.begin() ? start : *std::prev(after);
    if (!decompressor || offset < contentOffset || contentOffset < point.content) {
        decompressor = Decompressor::make(compression);
        contentOffset = point.content;
        packedOffset = point.packed;
        begin = 0;
        end = 0;
        uint8_t before = 0;
        if (point.bits != 0 &&
            (point.packed == 0 || packed.readAt(point.packed - 1, &before, 1) != 1))
            fail("is not an access point");
        if (!decompressor->restart(point, before))
            fail("is not an access point");
    }
    std::vector<uint8_t> passed(contentOffset < offset ? bufferSize : 0);
    while (contentOffset < offset)
        readOn(passed.data(),
               static_cast<size_t>(std::min<uint64_t>(passed.size(), offset - contentOffset)));
}

/// At least one byte.
size_t CompressedAccess::readOn(uint8_t* bytes, size_t count) const
{
    using Outcome = Decompressor::Outcome;
    for (;;) {
        Decompressor::Step step = {buffer.data() + begin, end - begin, bytes, count};
        const Outcome outcome = decompressor->decompress(step);
        begin = end - step.inputSize;
        const size_t got = count - step.outputSize;
        contentOffset += got;
        if (got != 0)
            return got;
        if (outcome == Outcome::Damaged || outcome == Outcome::Exhausted)
            fail("the compressed stream is damaged");
        if (begin != end)
            continue;
        begin = 0;
        end = 0;
        end = packed.readAt(packedOffset, buffer.data(), buffer.size());
        if (end == 0)
            fail("the compressed stream ends too early");
        packedOffset += end;
    }
}

} // namespace tqx
