#include "tqx/log/source/JoinedAccess.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace tqx
{

JoinedAccess::JoinedAccess(const std::vector<const RandomAccess*>& parts, std::string label)
    : m_name(std::move(label))
{
    for (const RandomAccess* part : parts) {
        if (part->getSize() != 0)
            m_joined.push_back({part, m_size});
        m_size += part->getSize();
    }
}

std::vector<JoinedAccess::Part>::const_iterator JoinedAccess::partAt(uint64_t offset) const
{
    const auto after =
        std::upper_bound(m_joined.begin(), m_joined.end(), offset,
                         [](uint64_t wanted, const Part& part) { return wanted < part.start; });
    return std::prev(after);
}

size_t JoinedAccess::readAt(uint64_t offset, uint8_t* bytes, size_t count) const
{
    if (offset >= m_size || count == 0)
        return 0;
    const auto wanted = static_cast<size_t>(std::min<uint64_t>(count, m_size - offset));
    size_t done = 0;
    for (auto part = partAt(offset); done < wanted; ++part)
        done += part->access->readAt(offset + done - part->start, bytes + done, wanted - done);
    return wanted;
}

JoinedAccess::Place JoinedAccess::placeOf(uint64_t offset) const
{
    const Part& part = *partAt(offset);
    return {part.access->getName(), offset - part.start};
}

} // namespace tqx
