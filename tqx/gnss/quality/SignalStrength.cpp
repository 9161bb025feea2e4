#include "tqx/gnss/quality/SignalStrength.h"

#include <algorithm>
#include <cmath>

namespace tqx::quality
{

namespace
{

constexpr double memory = 300;     ///< seconds over which the usual C/N0 is followed
constexpr double fall = 5;         ///< dB
constexpr unsigned fewest = 4;     ///< signals of a band
constexpr uint64_t pause = 600000; ///< milliseconds after which a satellite counts as new

} // namespace

SignalStrength::Usual& SignalStrength::usualOf(SatelliteFigures& satellite,
                                               const Observation& observation)
{
    for (Usual& usual : satellite.usual) {
        if (usual.code == observation.code)
            return usual;
    }
    Usual& usual = satellite.usual.emplace_back();
    usual.code = observation.code;
    usual.figures = &m_signals[{observation.satellite.system, observation.code}];
    return usual;
}

void SignalStrength::take(GnssMillis time, const std::vector<SeenSignal>& signals)
{
    std::map<char, Fall> bands;
    const SatelliteId* before = nullptr;
    SatelliteFigures* found = nullptr;
    for (const SeenSignal& seen : signals) {
        const Observation& observation = *seen.observation;
        const double cn0 = observation.cn0;
        if (!before || *before != observation.satellite)
            found = &m_satellites[observation.satellite];
        before = &observation.satellite;
        SatelliteFigures& satellite = *found;
        if (satellite.last != time) {
            ++satellite.epochs;
            satellite.last = time;
        }
        if (!std::isnan(seen.elevation))
            satellite.highest = std::fmax(satellite.highest, seen.elevation);
        if (std::isnan(cn0))
            continue;
        m_all.add(cn0);
        satellite.cn0.add(cn0);
        Usual& usual = usualOf(satellite, observation);
        SignalFigures& figures = *usual.figures;
        figures.all.add(cn0);
        if (seen.elevation >= 0) {
            const auto step = static_cast<size_t>(seen.elevation / 10);
            figures.byElevation[std::min(step, figures.byElevation.size() - 1)].add(cn0);
        }
        Fall& band = bands[observation.code.band];
        band.cn0.add(cn0);
        if (std::isnan(usual.value) || time - usual.time > pause) {
            usual.value = cn0;
            usual.time = time;
            continue;
        }
        const double below = usual.value - cn0;
        band.sum += below;
        ++band.count;
        // While it is low, the usual value is frozen.
        if (below < fall / 2) {
            const double passed = static_cast<double>(time - usual.time) * 1e-3;
            usual.value -= below * std::min(1.0, passed / memory);
        }
        usual.time = time;
    }
    std::string fallen;
    double worst = 0;
    size_t judged = 0;
    size_t low = 0;
    for (const auto& [band, each] : bands) {
        m_series[band].add(time, each.cn0.getMean());
        if (each.count < fewest)
            continue;
        ++judged;
        const double mean = each.sum / each.count;
        if (mean < fall)
            continue;
        ++low;
        worst = std::max(worst, mean);
        fallen += (fallen.empty() ? "band " : ", band ") + std::string(1, band);
    }
    if (low == 0)
        return m_weak.pass(time);
    m_weak.hold(time, worst, low == judged ? "all bands" : fallen);
}

Plot SignalStrength::report(AntennaQuality& quality) const
{
    quality.cn0 = m_all.get();
    quality.observations = m_all.getCount();
    for (const auto& [key, figures] : m_signals) {
        SignalQuality& signal = quality.signals.emplace_back();
        signal.system = key.first;
        signal.code = key.second;
        signal.observations = figures.all.getCount();
        signal.cn0 = figures.all.get();
        for (size_t i = 0; i < figures.byElevation.size(); ++i)
            signal.cn0ByElevation[i] = figures.byElevation[i].get();
    }
    for (const auto& [satellite, figures] : m_satellites) {
        SatelliteQuality& each = quality.satelliteList.emplace_back();
        each.satellite = satellite;
        each.epochs = figures.epochs;
        each.cn0 = figures.cn0.getMean();
        each.highest = figures.highest;
    }
    Plot plot{"cn0", "Mean C/N0 by band", "dB-Hz", {}};
    for (const auto& [band, series] : m_series)
        plot.series.push_back(series.get(std::string("band ") + band));
    return plot;
}

} // namespace tqx::quality
