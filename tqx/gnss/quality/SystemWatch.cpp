#include "tqx/gnss/quality/SystemWatch.h"

namespace tqx::quality
{

namespace
{

constexpr unsigned several = 3;     ///< satellites that do not set at once
constexpr uint64_t atOnce = 10000;  ///< milliseconds
constexpr uint64_t shortest = 5000; ///< milliseconds that an outage lasts at least
constexpr size_t mostOutages = 1000;

} // namespace

void SystemWatch::take(GnssMillis time, const std::vector<SeenSignal>& signals)
{
    for (System& system : m_systems)
        system.count = 0;
    unsigned total = 0;
    const SatelliteId* before = nullptr;
    for (const SeenSignal& seen : signals) {
        const SatelliteId& satellite = seen.observation->satellite;
        if (before && *before == satellite)
            continue;
        before = &satellite;
        ++total;
        ++m_systems[systemIndex(satellite.system)].count;
    }
    m_tracked.add(total);
    for (size_t i = 0; i < m_systems.size(); ++i) {
        System& system = m_systems[i];
        if (system.count == 0 && system.last == 0)
            continue;
        system.series.add(time, system.count);
        if (system.count == 0) {
            system.isOut = system.isOut || (system.last == m_last && system.enoughAt != 0 &&
                                            system.last - system.enoughAt <= atOnce);
            continue;
        }
        if (system.isOut && time - system.last >= shortest && m_outages.size() < mostOutages)
            m_outages.push_back({system.last, time, 0, std::string(1, systemLetters[i])});
        system.isOut = false;
        system.last = time;
        if (system.count >= several)
            system.enoughAt = time;
    }
    m_last = time;
}

void SystemWatch::finish()
{
    for (size_t i = 0; i < m_systems.size(); ++i) {
        System& system = m_systems[i];
        if (system.isOut && m_last - system.last >= shortest)
            m_outages.push_back({system.last, m_last, 0, std::string(1, systemLetters[i])});
        system.isOut = false;
    }
}

Plot SystemWatch::getPlot() const
{
    static const char* const names[systemCount] = {"GPS",  "GLONASS", "Galileo", "BeiDou",
                                                   "QZSS", "NavIC",   "SBAS"};
    Plot plot{"satellites", "Satellites tracked by system", "", {}};
    for (size_t i = 0; i < m_systems.size(); ++i) {
        if (!m_systems[i].series.isEmpty())
            plot.series.push_back(m_systems[i].series.get(names[i]));
    }
    return plot;
}

} // namespace tqx::quality
