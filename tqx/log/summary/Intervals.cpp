#include "tqx/log/summary/Intervals.h"

#include <algorithm>

namespace tqx
{

namespace
{

bool isGap(uint64_t interval, uint64_t usual)
{
    return interval >= usual + (usual + 1) / 2;
}

/// Times at the usual interval that would fit into a gap.
uint64_t missingIn(uint64_t gap, uint64_t usual)
{
    return (gap + usual / 2) / usual - 1;
}

} // namespace

void Intervals::add(GnssMillis time)
{
    if (m_last && time > *m_last) {
        const uint64_t interval = time - *m_last;
        count(interval);
        keep(*m_last, interval);
    }
    m_last = time;
}

// An interval that is not among the most frequent ones replaces the rarest and inherits its count,
// so that one that becomes frequent gets in, whatever came before.
void Intervals::count(uint64_t interval)
{
    constexpr size_t mostDifferent = 100;
    ++m_total;
    const auto known = m_frequent.find(interval);
    if (known != m_frequent.end()) {
        ++known->second.times;
        return;
    }
    Seen seen = {1, 0};
    if (m_frequent.size() == mostDifferent) {
        const auto rarest = std::min_element(
            m_frequent.begin(), m_frequent.end(),
            [](const auto& a, const auto& b) { return a.second.times < b.second.times; });
        seen = {rarest->second.times + 1, rarest->second.times};
        m_frequent.erase(rarest);
    }
    m_frequent[interval] = seen;
}

void Intervals::keep(GnssMillis after, uint64_t interval)
{
    if (!m_runs.empty()) {
        Run& run = m_runs.back();
        if (run.millis == interval && run.after + run.millis * run.times == after) {
            ++run.times;
            return;
        }
    }
    if (m_room != 0 || makeRoom()) {
        --m_room;
        m_runs.push_back({after, interval, 1});
        return;
    }
    const std::optional<uint64_t> usual = getUsual();
    if (usual && isGap(interval, *usual))
        ++m_unlisted;
}

/// Drops the intervals that are not gaps.
bool Intervals::makeRoom()
{
    const std::optional<uint64_t> usual = getUsual();
    if (!usual || m_runs.size() < m_leastToSift)
        return false;
    const auto end = std::remove_if(m_runs.begin(), m_runs.end(),
                                    [&](const Run& run) { return !isGap(run.millis, *usual); });
    m_room += static_cast<size_t>(m_runs.end() - end);
    m_runs.erase(end, m_runs.end());
    m_leastToSift = m_runs.size() + m_runs.size() / 8 + 1;
    return m_room != 0;
}

std::optional<uint64_t> Intervals::getUsual() const
{
    const auto timesOf = [](const auto& entry) { return entry.second.times - entry.second.excess; };
    const auto most =
        std::max_element(m_frequent.begin(), m_frequent.end(),
                         [&](const auto& a, const auto& b) { return timesOf(a) < timesOf(b); });
    if (most == m_frequent.end() || timesOf(*most) * 2 <= m_total)
        return std::nullopt;
    return most->first;
}

std::vector<Intervals::Gap> Intervals::getGaps(uint64_t usual, size_t most) const
{
    std::vector<Gap> gaps;
    for (const Run& run : m_runs) {
        for (uint64_t i = 0; isGap(run.millis, usual) && i < run.times && gaps.size() < most; ++i)
            gaps.push_back({run.millis, run.after + i * run.millis, missingIn(run.millis, usual)});
    }
    return gaps;
}

uint64_t Intervals::getGapCount(uint64_t usual) const
{
    uint64_t gaps = m_unlisted;
    for (const Run& run : m_runs)
        gaps += isGap(run.millis, usual) ? run.times : 0;
    return gaps;
}

std::vector<Intervals::GapGroup> Intervals::getGapsByLength(uint64_t usual) const
{
    std::map<uint64_t, GapGroup> groups;
    for (const Run& run : m_runs) {
        if (!isGap(run.millis, usual))
            continue;
        const Gap gap = {run.millis, run.after, missingIn(run.millis, usual)};
        groups.emplace(run.millis, GapGroup{gap, 0}).first->second.times += run.times;
    }
    std::vector<GapGroup> sorted;
    for (const auto& [millis, group] : groups)
        sorted.push_back(group);
    return sorted;
}

} // namespace tqx
