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
    : m_packed(compressed), m_compression(method), m_accessPoints(std::move(points)),
      m_size(contentSize), m_buffer(bufferSize)
{
}

void CompressedAccess::fail(const char* reason) const
{
    m_decompressor.reset();
    throw SourceError(
        fmt::format("{}: {}: {}", m_packed.getName(), m_packedOffset - (m_end - m_begin), reason));
}

size_t CompressedAccess::readAt(uint64_t offset, uint8_t* bytes, size_t count) const
{
    if (offset >= m_size)
        return 0;
    const auto wanted = static_cast<size_t>(std::min<uint64_t>(count, m_size - offset));
    const std::lock_guard<std::mutex> lock(m_mutex);
    goTo(offset);
    for (size_t done = 0; done < wanted;)
        done += readOn(bytes + done, wanted - done);
    return wanted;
}

void CompressedAccess::goTo(uint64_t offset) const
{
    const auto after = std::upper_bound(
        m_accessPoints.begin(), m_accessPoints.end(), offset,
        [](uint64_t wanted, const AccessPoint& point) { return wanted < point.content; });
    const AccessPoint start;
    const AccessPoint& point = after == m_accessPoints.begin() ? start : *std::prev(after);
    if (!m_decompressor || offset < m_contentOffset || m_contentOffset < point.content) {
        m_decompressor = Decompressor::make(m_compression);
        m_contentOffset = point.content;
        m_packedOffset = point.packed;
        m_begin = 0;
        m_end = 0;
        uint8_t before = 0;
        if (point.bits != 0 &&
            (point.packed == 0 || m_packed.readAt(point.packed - 1, &before, 1) != 1))
            fail("is not an access point");
        if (!m_decompressor->restart(point, before))
            fail("is not an access point");
    }
    std::vector<uint8_t> passed(m_contentOffset < offset ? bufferSize : 0);
    while (m_contentOffset < offset) {
        readOn(passed.data(),
               static_cast<size_t>(std::min<uint64_t>(passed.size(), offset - m_contentOffset)));
    }
}

/// At least one byte.
size_t CompressedAccess::readOn(uint8_t* bytes, size_t count) const
{
    using Outcome = Decompressor::Outcome;
    for (;;) {
        Decompressor::Step step = {m_buffer.data() + m_begin, m_end - m_begin, bytes, count};
        const Outcome outcome = m_decompressor->decompress(step);
        m_begin = m_end - step.inputSize;
        const size_t got = count - step.outputSize;
        m_contentOffset += got;
        if (got != 0)
            return got;
        if (outcome == Outcome::Damaged || outcome == Outcome::Exhausted)
            fail("the compressed stream is damaged");
        if (m_begin != m_end)
            continue;
        m_begin = 0;
        m_end = 0;
        m_end = m_packed.readAt(m_packedOffset, m_buffer.data(), m_buffer.size());
        if (m_end == 0)
            fail("the compressed stream ends too early");
        m_packedOffset += m_end;
    }
}

} // namespace tqx
