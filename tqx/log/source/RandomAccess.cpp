#include "tqx/log/source/RandomAccess.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace tqx
{

RandomAccess::~RandomAccess() = default;

MemoryAccess::MemoryAccess(const uint8_t* data, size_t count, std::string label)
    : content(data), size(count), name(std::move(label))
{
}

size_t MemoryAccess::readAt(uint64_t offset, uint8_t* bytes, size_t count) const
{
    if (offset >= size || count == 0)
        return 0;
    const auto got = static_cast<size_t>(std::min<uint64_t>(count, size - offset));
    std::memcpy(bytes, content + offset, got);
    return got;
}

} // namespace tqx
