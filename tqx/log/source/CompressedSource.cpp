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
    : m_packed(std::move(compressed)), m_decompressor(Decompressor::make(compression)),
      m_accessPoints(points), m_name(m_packed->placeOf(0).file), m_buffer(bufferSize)
{
    if (m_accessPoints != nullptr)
        m_decompressor->setStopsAtPoints();
}

/// False at the end of the compressed bytes.
bool CompressedSource::fill()
{
    m_begin = 0;
    m_end = 0;
    m_end = m_packed->read(m_buffer.data(), m_buffer.size());
    m_packedOffset += m_end;
    return m_end != 0;
}

void CompressedSource::notePoint()
{
    const uint64_t before = m_accessPoints->empty() ? 0 : m_accessPoints->back().content;
    AccessPoint point;
    if (m_contentOffset - before < pointDistance || !m_decompressor->getPoint(point))
        return;
    point.packed = m_packedOffset - (m_end - m_begin);
    point.content = m_contentOffset;
    m_accessPoints->push_back(std::move(point));
}

size_t CompressedSource::read(uint8_t* bytes, size_t capacity)
{
    if (capacity == 0)
        return 0;
    while (m_failure.empty()) {
        if (m_begin == m_end && !m_wasFull && !fill()) {
            if (m_last == Outcome::Complete || m_packed->isInterrupted())
                return 0;
            m_failure = fmt::format("the {} stream ends too early", m_decompressor->getFormat());
            break;
        }
        Decompressor::Step step = {m_buffer.data() + m_begin, m_end - m_begin, bytes, capacity};
        m_last = m_decompressor->decompress(step);
        m_begin = m_end - step.inputSize;
        m_wasFull = step.outputSize == 0;
        const size_t count = capacity - step.outputSize;
        m_contentOffset += count;
        if (m_last == Outcome::Damaged) {
            m_failure = fmt::format("the {} stream is damaged", m_decompressor->getFormat());
        } else if (m_last == Outcome::Exhausted) {
            m_failure = fmt::format("its end is followed by bytes that are not a {} stream",
                                    m_decompressor->getFormat());
        } else if (m_accessPoints != nullptr) {
            notePoint();
        }
        if (count != 0)
            return count;
    }
    const uint64_t at = m_packedOffset - (m_end - m_begin);
    throw SourceError(fmt::format("{}: {}: {}", m_name, at, m_failure));
}

} // namespace tqx
