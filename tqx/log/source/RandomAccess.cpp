#include "tqx/log/source/RandomAccess.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace tqx
{

RandomAccess::~RandomAccess() = default;

MemoryAccess::MemoryAccess(const uint8_t* data, size_t count, std::string label)
    : m_content(data), m_size(count), m_name(std::move(label))
{
}

size_t MemoryAccess::readAt(uint64_t offset, uint8_t* bytes, size_t count) const
{
    if (offset >= m_size || count == 0)
        return 0;
    const auto got = static_cast<size_t>(std::min<uint64_t>(count, m_size - offset));
    std::memcpy(bytes, m_content + offset, got);
    return got;
}

} // namespace tqx
