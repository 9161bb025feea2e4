#include "tqx/framing/PrefixChecksums.h"

#include "korcg_crc.h"

namespace tqx
{

uint16_t PrefixChecksums::of(const uint8_t* bytes, uint64_t position, size_t size)
{
    if (m_marks.empty() || position > m_base + m_lastMark * stride) {
        m_marks.resize(markCount);
        m_base = position;
        m_lastMark = 0;
        mark(0) = 0;
    }
    const uint64_t begin = position - m_base;
    const uint64_t end = begin + size;
    const uint64_t firstMark = (begin + stride - 1) / stride;
    const auto toFirstMark = static_cast<size_t>(firstMark * stride - begin);
    if (toFirstMark > size) {
        return korcg_crc16_bytes(bytes, size);
    }

    // No byte before the stretch is read: firstMark is not after m_lastMark.
    const auto at = [&](uint64_t offset) { return bytes + (offset - begin); };
    for (; m_lastMark < end / stride; ++m_lastMark) {
        mark(m_lastMark + 1) = korcg_crc16_bytes(at(m_lastMark * stride), stride, mark(m_lastMark));
    }
    const uint64_t endMark = end / stride;
    const uint16_t sumToEnd = korcg_crc16_bytes(
        at(endMark * stride), static_cast<size_t>(end - endMark * stride), mark(endMark));

    // sum(first mark .. end) is sumToEnd less that up to the first mark, shifted; so is the sum of
    // the bytes before the first mark added. Both shifts are the same.
    const uint16_t sumToFirstMark = korcg_crc16_bytes(bytes, toFirstMark);
    return korcg_crc16_combine(static_cast<uint16_t>(sumToFirstMark ^ mark(firstMark)), sumToEnd,
                               size - toFirstMark);
}

} // namespace tqx
