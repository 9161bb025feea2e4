#include "tqx/log/summary/EpochSet.h"

#include <iterator>

namespace tqx
{

bool EpochSet::add(GnssMillis time)
{
    // The usual case: the last series continues.
    if (m_current != m_all.end() && m_current->second.last + m_current->second.period == time &&
        m_current->second.last < time && std::next(m_current) == m_all.end()) {
        m_current->second.last = time;
        return true;
    }
    const auto after = m_all.upper_bound(time);
    if (after == m_all.begin()) {
        insert(time, {time, 0});
        return true;
    }
    m_current = std::prev(after);
    const GnssMillis first = m_current->first;
    Series& series = m_current->second;
    if (time > series.last) {
        if (series.period == 0) {
            series = {time, time - first};
        } else if (time == series.last + series.period) {
            series.last = time;
        } else {
            insert(time, {time, 0});
        }
        return true;
    }
    if (series.period == 0 || (time - first) % series.period == 0)
        return false;
    split(m_current, time);
    return true;
}

void EpochSet::insert(GnssMillis first, const Series& series)
{
    if (m_room == 0)
        return;
    --m_room;
    m_current = m_all.emplace(first, series).first;
}

/// Adds a time between those of a series.
void EpochSet::split(Map::iterator found, GnssMillis time)
{
    constexpr size_t added = 2;
    if (m_room < added)
        return;
    Series& series = found->second;
    const uint64_t period = series.period;
    const GnssMillis before = time - (time - found->first) % period;
    const GnssMillis last = series.last;
    series = {before, before == found->first ? 0 : period};
    insert(before + period, {last, before + period == last ? 0 : period});
    insert(time, {time, 0});
}

} // namespace tqx
