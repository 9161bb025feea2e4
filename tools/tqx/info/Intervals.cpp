#include "Intervals.h"

#include <algorithm>

namespace tool
{

void Intervals::add(GnssMillis time)
{
    constexpr size_t mostDifferent = 100;
    if (last && time <= *last) {
        last = time;
        return;
    }
    if (last) {
        const uint64_t interval = time - *last;
        ++total;
        if (counts.size() < mostDifferent || counts.count(interval) != 0)
            ++counts[interval];
    }
    last = time;
}

std::optional<uint64_t> Intervals::getUsual() const
{
    const auto most =
        std::max_element(counts.begin(), counts.end(),
                         [](const auto& a, const auto& b) { return a.second < b.second; });
    if (most == counts.end() || most->second * 2 <= total)
        return std::nullopt;
    return most->first;
}

uint64_t Intervals::getGaps() const
{
    const std::optional<uint64_t> usual = getUsual();
    uint64_t gaps = 0;
    for (const auto& [interval, count] : counts)
        if (usual && interval * 2 >= *usual * 3)
            gaps += count;
    return gaps;
}

} // namespace tool
