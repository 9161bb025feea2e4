#include "tqx/log/summary/EpochSet.h"

#include <iterator>

namespace tqx
{

bool EpochSet::add(GnssMillis time)
{
    // The usual case: the series goes on and is the last one.
    if (current != all.end() && current->second.last + current->second.period == time &&
        current->second.last < time && std::next(current) == all.end()) {
        current->second.last = time;
        return true;
    }
    const auto after = all.upper_bound(time);
    if (after == all.begin()) {
        insert(time, {time, 0});
        return true;
    }
    current = std::prev(after);
    const GnssMillis first = current->first;
    Series& series = current->second;
    if (time > series.last) {
        if (series.period == 0)
            series = {time, time - first};
        else if (time == series.last + series.period)
            series.last = time;
        else
            insert(time, {time, 0});
        return true;
    }
    if (series.period == 0 || (time - first) % series.period == 0)
        return false;
    split(current, time);
    return true;
}

void EpochSet::insert(GnssMillis first, const Series& series)
{
    if (room == 0)
        return;
    --room;
    current = all.emplace(first, series).first;
}

/// Adds a time between those of a series.
void EpochSet::split(Map::iterator found, GnssMillis time)
{
    constexpr size_t added = 2;
    if (room < added)
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
