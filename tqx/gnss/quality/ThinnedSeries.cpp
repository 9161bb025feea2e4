#include "tqx/gnss/quality/ThinnedSeries.h"

#include <algorithm>
#include <cmath>

namespace tqx::quality
{

void ThinnedSeries::add(GnssMillis time, double value)
{
    if (std::isnan(value))
        return;
    const uint64_t place = time / m_width;
    if (!m_stretches.empty() && place <= m_stretches.back().place) {
        Stretch& last = m_stretches.back();
        last.least = std::min(last.least, value);
        last.most = std::max(last.most, value);
        last.sum += value;
        ++last.count;
        return;
    }
    if (m_stretches.size() == most) {
        widen();
        return add(time, value);
    }
    m_stretches.push_back({place, value, value, value, 1});
}

/// Joins neighbours until there is room.
void ThinnedSeries::widen()
{
    while (m_stretches.size() > most / 2) {
        m_width *= 2;
        size_t kept = 0;
        for (Stretch stretch : m_stretches) {
            stretch.place /= 2;
            if (kept != 0 && m_stretches[kept - 1].place == stretch.place) {
                Stretch& before = m_stretches[kept - 1];
                before.least = std::min(before.least, stretch.least);
                before.most = std::max(before.most, stretch.most);
                before.sum += stretch.sum;
                before.count += stretch.count;
            } else {
                m_stretches[kept++] = stretch;
            }
        }
        m_stretches.resize(kept);
    }
}

Series ThinnedSeries::get(const std::string& name) const
{
    Series series;
    series.name = name;
    series.width = m_width;
    series.points.reserve(m_stretches.size());
    for (const Stretch& stretch : m_stretches) {
        series.points.push_back(
            {stretch.place * m_width, static_cast<float>(stretch.least),
             static_cast<float>(stretch.most),
             static_cast<float>(stretch.sum / static_cast<double>(stretch.count))});
    }
    return series;
}

} // namespace tqx::quality
