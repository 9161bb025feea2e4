#include "tqx/gnss/position/SourceChoice.h"

#include <algorithm>

namespace tqx
{

SourceChoice::SourceChoice() : m_extents(positionSources().size()) {}

void SourceChoice::take(const Position& position)
{
    if (position.fix == Fix::None)
        return;
    Extent& extent = m_extents[static_cast<size_t>(position.source - positionSources().data())];
    extent.first = extent.count == 0 ? position.time : std::min(extent.first, position.time);
    extent.last = std::max(extent.last, position.time);
    ++extent.count;
}

const PositionSource* SourceChoice::best() const
{
    GnssMillis longest = 0;
    for (const Extent& extent : m_extents)
        longest = std::max(longest, extent.last - extent.first);
    for (size_t i = 0; i < m_extents.size(); ++i) {
        const Extent& extent = m_extents[i];
        if (extent.count != 0 && (extent.last - extent.first) * 10 >= longest * 9)
            return &positionSources()[i];
    }
    return nullptr;
}

std::vector<const PositionSource*> SourceChoice::found() const
{
    std::vector<const PositionSource*> sources;
    for (size_t i = 0; i < m_extents.size(); ++i) {
        if (m_extents[i].count != 0)
            sources.push_back(&positionSources()[i]);
    }
    return sources;
}

} // namespace tqx
