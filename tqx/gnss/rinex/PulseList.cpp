#include "tqx/gnss/rinex/PulseList.h"

#include <algorithm>
#include <tuple>

namespace tqx
{

namespace
{

auto orderOf(const PulseList::Pulse& pulse)
{
    return std::tie(pulse.time, pulse.nanoseconds, pulse.input, pulse.edge);
}

} // namespace

PulseList::PulseList()
    : m_gatherer([this](const Event& event) {
          m_pulses.push_back({event.time, event.nanoseconds, event.input, event.edge});
      })
{
}

void PulseList::finish(const EpochSelection& selection)
{
    m_gatherer.finish();
    m_pulses.erase(
        std::remove_if(m_pulses.begin(), m_pulses.end(),
                       [&](const Pulse& pulse) { return !selection.isInTime(pulse.time); }),
        m_pulses.end());
    std::sort(m_pulses.begin(), m_pulses.end(),
              [](const Pulse& a, const Pulse& b) { return orderOf(a) < orderOf(b); });
    m_pulses.erase(
        std::unique(m_pulses.begin(), m_pulses.end(),
                    [](const Pulse& a, const Pulse& b) { return orderOf(a) == orderOf(b); }),
        m_pulses.end());
}

size_t PulseList::findFirstFrom(GnssMillis time, size_t start) const
{
    while (start < m_pulses.size() && m_pulses[start].time < time)
        ++start;
    return start;
}

} // namespace tqx
