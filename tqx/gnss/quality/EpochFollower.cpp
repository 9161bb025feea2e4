#include "tqx/gnss/quality/EpochFollower.h"

#include <algorithm>

namespace tqx::quality
{

namespace
{

constexpr unsigned changed = 3; ///< equal steps that are a change of the rate

bool isAlike(uint64_t a, uint64_t b)
{
    return std::max(a, b) - std::min(a, b) <= std::min(a, b) / 10;
}

} // namespace

void EpochFollower::add(GnssMillis time)
{
    ++m_found;
    if (m_last && time > *m_last)
        follow(*m_last, time - *m_last);
    if (!m_first)
        m_first = time;
    m_last = time;
}

void EpochFollower::follow(GnssMillis before, uint64_t step)
{
    if (m_interval == 0)
        m_interval = step;
    if (step * 2 > m_interval * 3) {
        if (!m_long.empty() && !isAlike(step, m_longStep))
            keepOutages();
        m_longStep = step;
        m_long.push_back({before, before + step, 0, {}});
        if (m_long.size() == changed)
            change(step);
        return;
    }
    keepOutages();
    m_shortSteps = step * 3 < m_interval * 2 && (m_shortSteps == 0 || isAlike(step, m_shortStep))
                       ? m_shortSteps + 1
                       : 0;
    m_shortStep = step;
    if (m_shortSteps == changed)
        change(step);
    constexpr size_t mostIntervals = 64;
    if (m_epochs.size() < mostIntervals || m_epochs.count(m_interval) != 0)
        ++m_epochs[m_interval];
}

void EpochFollower::change(uint64_t step)
{
    m_interval = step;
    m_long.clear();
    m_shortSteps = 0;
}

void EpochFollower::keepOutages()
{
    constexpr size_t most = 1000;
    for (const Episode& outage : m_long) {
        const uint64_t step = outage.end - outage.start;
        m_missing += (step + m_interval / 2) / m_interval - 1;
        m_outageMillis += step - m_interval;
        m_longest = std::max(m_longest, step - m_interval);
        ++m_outageCount;
        if (m_outages.size() < most)
            m_outages.push_back(outage);
    }
    m_long.clear();
}

void EpochFollower::finish()
{
    keepOutages();
}

uint64_t EpochFollower::getUsual() const
{
    const auto usual =
        std::max_element(m_epochs.begin(), m_epochs.end(),
                         [](const auto& a, const auto& b) { return a.second < b.second; });
    return usual == m_epochs.end() ? m_interval : usual->first;
}

} // namespace tqx::quality
