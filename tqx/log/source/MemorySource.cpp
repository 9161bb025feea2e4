#include "tqx/log/source/MemorySource.h"

#include <algorithm>
#include <cstring>

namespace tqx
{

size_t MemorySource::read(uint8_t* bytes, size_t capacity)
{
    const size_t count = std::min(capacity, size - position);
    if (count != 0)
        std::memcpy(bytes, content + position, count);
    position += count;
    return count;
}

uint64_t MemorySource::skip(uint64_t count)
{
    const auto skipped = static_cast<size_t>(std::min<uint64_t>(count, size - position));
    position += skipped;
    return skipped;
}

} // namespace tqx
