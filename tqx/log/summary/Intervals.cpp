#include "tqx/log/summary/Intervals.h"

#include <algorithm>

namespace tqx
{

void Intervals::add(GnssMillis time)
{
    constexpr size_t mostDifferent = 100;
    if (last && time > *last) {
        const uint64_t interval = time - *last;
        ++total;
        const auto found = intervals.find(interval);
        if (found != intervals.end())
            ++found->second.times;
        else if (intervals.size() < mostDifferent)
            intervals[interval] = {1, *last};
    }
    last = time;
}

std::optional<uint64_t> Intervals::getUsual() const
{
    const auto most =
        std::max_element(intervals.begin(), intervals.end(), [](const auto& a, const auto& b) {
            return a.second.times < b.second.times;
        });
    if (most == intervals.end() || most->second.times * 2 <= total)
        return std::nullopt;
    return most->first;
}

std::vector<Intervals::Gap> Intervals::getGaps() const
{
    std::vector<Gap> gaps;
    const std::optional<uint64_t> usual = getUsual();
    for (const auto& [interval, seen] : intervals)
        if (usual && interval * 2 >= *usual * 3)
            gaps.push_back(
                {interval, seen.times, seen.after, (interval + *usual / 2) / *usual - 1});
    return gaps;
}

} // namespace tqx
