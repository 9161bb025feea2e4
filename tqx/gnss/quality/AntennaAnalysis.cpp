#include "tqx/gnss/quality/AntennaAnalysis.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <tuple>
#include <utility>

namespace tqx::quality
{

namespace
{

const char* systemName(char system)
{
    constexpr const char* names[systemCount] = {"GPS",  "GLONASS", "Galileo", "BeiDou",
                                                "QZSS", "NavIC",   "SBAS"};
    return names[systemIndex(system)];
}

double secondsOf(const Episode& episode)
{
    return static_cast<double>(episode.end - episode.start) * 1e-3;
}

} // namespace

void AntennaAnalysis::closeEpoch(GnssMillis time, uint64_t interval)
{
    std::sort(m_seen.begin(), m_seen.end(), [](const SeenSignal& a, const SeenSignal& b) {
        return std::tie(a.observation->satellite, a.observation->code) <
               std::tie(b.observation->satellite, b.observation->code);
    });
    m_withPhase.clear();
    for (const SeenSignal& seen : m_seen) {
        if (!std::isnan(seen.observation->phase) && seen.frequency > 0)
            m_withPhase.push_back(seen);
    }
    m_strength.take(time, m_seen);
    // Without anything it is an outage of the antenna, and of no system.
    if (m_hasSeen)
        m_systems.take(time, m_seen);
    m_arcs.take(time, m_withPhase, interval * 7 / 2);
    if (m_hasSeen) {
        if (m_epochs == 0) {
            m_first = time;
        } else if (m_now != m_last) {
            keepOutage(time);
        }
        m_last = time;
        ++m_epochs;
    }
    m_now = time;
    m_interval = interval;
    m_seen.clear();
    m_hasSeen = false;
}

void AntennaAnalysis::keepOutage(GnssMillis end)
{
    constexpr size_t most = 1000;
    const uint64_t step = end - m_last;
    const uint64_t missing = step > m_interval ? step - m_interval : 0;
    ++m_outageCount;
    m_outageMillis += missing;
    m_longestOutage = std::max(m_longestOutage, missing);
    if (m_outages.size() < most)
        m_outages.push_back({m_last, end, 0, {}});
}

void AntennaAnalysis::finish()
{
    if (m_epochs != 0 && m_now != m_last)
        keepOutage(m_now + m_interval);
    m_systems.finish();
    m_arcs.finish();
}

void AntennaAnalysis::addFinding(Quality& log, FindingKind kind, const Episode& episode,
                                 double value, const std::string& text) const
{
    Finding& finding = log.findings.emplace_back();
    finding.kind = kind;
    finding.start = episode.start;
    finding.end = episode.end;
    finding.subject = episode.subject;
    finding.value = value;
    finding.text = m_number == 0 ? text : fmt::format("antenna {}: {}", m_number, text);
    finding.antenna = m_number;
}

void AntennaAnalysis::addPlot(Quality& log, Plot plot) const
{
    if (m_number != 0) {
        plot.key += fmt::format("_{}", m_number);
        plot.title += fmt::format(", antenna {}", m_number);
    }
    log.plots.push_back(std::move(plot));
}

void AntennaAnalysis::reportEpochs(AntennaQuality& antenna, Quality& log) const
{
    if (m_number != 0) {
        antenna.number = m_number;
        antenna.first = m_first;
        antenna.last = m_last;
        antenna.interval = log.interval;
        antenna.epochsExpected = log.epochsExpected;
    }
    antenna.epochsFound = m_epochs;
    antenna.outages += m_outageCount;
    antenna.outageSeconds += static_cast<double>(m_outageMillis) * 1e-3;
    antenna.longestOutage =
        std::max(antenna.longestOutage, static_cast<double>(m_longestOutage) * 1e-3);
    for (const Episode& outage : m_outages) {
        addFinding(log, FindingKind::Outage, outage, secondsOf(outage),
                   fmt::format("no measurements for {:.6g} s", secondsOf(outage)));
    }
    antenna.findingCounts[FindingKind::Outage] = antenna.outages;
}

void AntennaAnalysis::report(AntennaQuality& antenna, Quality& log) const
{
    reportSystems(antenna, log);
    addPlot(log, m_strength.report(antenna));
    reportArcs(antenna, log);
}

void AntennaAnalysis::reportSystems(AntennaQuality& antenna, Quality& log) const
{
    antenna.satellites = m_systems.getTracked().get();
    for (Episode outage : m_systems.getOutages()) {
        outage.subject = systemName(outage.subject.front());
        addFinding(log, FindingKind::SystemOutage, outage, secondsOf(outage),
                   fmt::format("no {} satellites for {:.6g} s", outage.subject, secondsOf(outage)));
    }
    antenna.findingCounts[FindingKind::SystemOutage] = m_systems.getOutages().size();
    addPlot(log, m_systems.getPlot());
}

void AntennaAnalysis::reportArcs(AntennaQuality& antenna, Quality& log) const
{
    antenna.slips = m_arcs.getSlipCount();
    antenna.slipsByLock = m_arcs.getSlipsByLock();
    antenna.slipList = m_arcs.getSlips();
    double squares = 0;
    uint64_t epochs = 0;
    for (SignalQuality& signal : antenna.signals) {
        const auto found = m_arcs.getSignals().find({signal.system, signal.code});
        if (found == m_arcs.getSignals().end())
            continue;
        signal.multipath = found->second.getMultipath();
        signal.multipathEpochs = found->second.epochs;
        signal.slips = found->second.slips;
        squares += found->second.squares;
        epochs += found->second.epochs;
    }
    if (epochs != 0)
        antenna.multipath = std::sqrt(squares / static_cast<double>(epochs));
    for (SatelliteQuality& satellite : antenna.satelliteList) {
        const auto found = m_arcs.getSatellites().find(satellite.satellite);
        if (found == m_arcs.getSatellites().end())
            continue;
        satellite.multipath = found->second.getMultipath();
        satellite.slips = found->second.slips;
    }
    for (const Slip& slip : antenna.slipList) {
        const std::string satellite = slip.satellite.text();
        const std::string how =
            slip.isLossOfLock ? "loss of lock" : fmt::format("phase jumps by {:.2f} m", slip.jump);
        addFinding(log, FindingKind::Slip, {slip.time, slip.time, 0, satellite}, slip.jump,
                   fmt::format("cycle slip on {} ({}): {}", satellite, slip.signals, how));
    }
    antenna.findingCounts[FindingKind::Slip] = antenna.slips;
    const std::vector<Episode> multipath = m_arcs.findMultipath();
    for (Episode episode : multipath) {
        const std::string codes = episode.subject.substr(4);
        episode.subject.resize(3);
        addFinding(
            log, FindingKind::Multipath, episode, episode.worst,
            fmt::format("multipath on {} ({}): {:.1f} m", episode.subject, codes, episode.worst));
    }
    antenna.findingCounts[FindingKind::Multipath] = multipath.size();
    Plot plot{"multipath", "Multipath by system, root mean square of a minute", "m", {}};
    for (const auto& [system, series] : m_arcs.getSeries())
        plot.series.push_back(series.get(systemName(system)));
    if (!plot.series.empty())
        addPlot(log, std::move(plot));
}

void AntennaAnalysis::reportWeak(AntennaQuality& antenna, Quality& log)
{
    constexpr uint64_t near = 30000;
    uint64_t count = 0;
    for (const Episode& episode : m_strength.findWeak()) {
        const bool isExplained = std::any_of(
            log.findings.begin(), log.findings.end(), [&episode](const Finding& finding) {
                return (finding.kind == FindingKind::Interference ||
                        finding.kind == FindingKind::Antenna) &&
                       finding.start <= episode.end + near && episode.start <= finding.end + near;
            });
        if (isExplained)
            continue;
        ++count;
        addFinding(log, FindingKind::WeakSignals, episode, episode.worst,
                   fmt::format("C/N0 lower by {:.0f} dB on all satellites, {}", episode.worst,
                               episode.subject));
    }
    antenna.findingCounts[FindingKind::WeakSignals] = count;
}

} // namespace tqx::quality
