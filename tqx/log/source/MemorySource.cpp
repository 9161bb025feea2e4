#include "tqx/log/source/MemorySource.h"

#include <algorithm>
#include <cstring>

namespace tqx
{

size_t MemorySource::read(uint8_t* bytes, size_t capacity)
{
    const size_t count = std::min(capacity, m_size - m_position);
    if (count != 0)
        std::memcpy(bytes, m_content + m_position, count);
    m_position += count;
    return count;
}

uint64_t MemorySource::skip(uint64_t count)
{
    const auto skipped = static_cast<size_t>(std::min<uint64_t>(count, m_size - m_position));
    m_position += skipped;
    return skipped;
}

} // namespace tqx
