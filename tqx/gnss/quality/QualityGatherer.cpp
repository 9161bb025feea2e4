#include "tqx/gnss/quality/QualityGatherer.h"

#include "tqx/gnss/observation/ObservationGatherer.h"
#include "tqx/gnss/quality/ArcAnalysis.h"
#include "tqx/gnss/quality/EpochFollower.h"
#include "tqx/gnss/quality/PositionQuality.h"
#include "tqx/gnss/quality/ReceiverQuality.h"
#include "tqx/gnss/quality/SignalStrength.h"
#include "tqx/gnss/quality/SkyView.h"
#include "tqx/gnss/quality/SystemWatch.h"

#include <fmt/format.h>

#include <algorithm>
#include <tuple>
#include <utility>

namespace tqx::quality
{

namespace
{

struct KindName {
    FindingKind kind;
    const char* name;
};

constexpr KindName kindNames[] = {
    {FindingKind::Outage, "outage"},
    {FindingKind::SystemOutage, "system_outage"},
    {FindingKind::Multipath, "multipath"},
    {FindingKind::Slip, "slip"},
    {FindingKind::Interference, "interference"},
    {FindingKind::Antenna, "antenna"},
    {FindingKind::WeakSignals, "weak_signals"},
    {FindingKind::Corrections, "corrections"},
    {FindingKind::Restart, "restart"},
    {FindingKind::ReceiverError, "receiver_error"},
    {FindingKind::SetUpChange, "set_up_change"},
    {FindingKind::Damage, "damage"},
};

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

const char* nameOf(FindingKind kind)
{
    return kindNames[static_cast<size_t>(kind)].name;
}

class QualityGatherer::Work
{
public:
    explicit Work(QualityOptions options)
        : m_mask(options.mask), m_positions(std::move(options.reference)),
          m_gatherer([this](ObservationEpoch& epoch) { return takeEpoch(epoch); })
    {
    }

    void take(const DecodedBlock& decoded);
    void addDamage(const StreamGap& gap);
    Quality finish(const StreamCounts& counts);

private:
    bool takeEpoch(ObservationEpoch& epoch);
    void reportEpochs(Quality& quality, const EpochFollower& epochs) const;
    void reportArcs(Quality& quality) const;
    void reportSystems(Quality& quality) const;
    void reportWeak(Quality& quality);
    void reportCorrections(Quality& quality);
    void reportDamage(Quality& quality, const StreamCounts& counts) const;

    double m_mask;
    SkyView m_sky;
    EpochFollower m_epochs;
    SignalStrength m_strength;
    SystemWatch m_systems;
    ArcAnalysis m_arcs;
    PositionQuality m_positions;
    ReceiverQuality m_receiver;
    ObservationGatherer m_gatherer;
    std::vector<SeenSignal> m_seen;
    std::vector<SeenSignal> m_withPhase;
    bool m_hasElevations = false;
    std::optional<uint8_t> m_jumps;
    uint64_t m_clockJumps = 0;
    GnssMillis m_time = 0; ///< of the last block
    Episodes m_damage{1000};
    uint64_t m_damagedPlaces = 0;
};

void QualityGatherer::Work::take(const DecodedBlock& decoded)
{
    const uint16_t number = decoded.block.getNumber();
    const auto& header = decoded.getHeader();
    const auto time = gnssMillis(header.TOW, header.WNc);
    if (time) {
        m_time = *time;
        if (SkyView::wants(number)) {
            m_sky.take(number, decoded.record, *time);
        } else if (ReceiverQuality::wants(number)) {
            m_receiver.take(number, decoded.record, *time);
        } else if (positionSource(number)) {
            Position position;
            if (readPosition(decoded.record, position))
                m_positions.take(position);
        }
    }
    if (ObservationGatherer::wants(number))
        m_gatherer.take(decoded);
}

bool QualityGatherer::Work::takeEpoch(ObservationEpoch& epoch)
{
    m_epochs.add(epoch.time);
    if (m_jumps) {
        // They may also decrease: the shorter way counts.
        const auto steps = static_cast<uint8_t>(epoch.clockJumps - *m_jumps);
        m_clockJumps += std::min<unsigned>(steps, 256U - steps);
    }
    m_jumps = epoch.clockJumps;
    m_seen.clear();
    for (const Observation& observation : epoch.observations) {
        if (observation.antenna != 0)
            continue;
        const double elevation = m_sky.elevation(observation.satellite, epoch.time);
        m_hasElevations = m_hasElevations || !std::isnan(elevation);
        if (!(elevation < m_mask)) {
            m_seen.push_back({&observation, elevation,
                              carrierFrequency(observation.signal, observation.channel)});
        }
    }
    std::sort(m_seen.begin(), m_seen.end(), [](const SeenSignal& a, const SeenSignal& b) {
        return std::tie(a.observation->satellite, a.observation->code) <
               std::tie(b.observation->satellite, b.observation->code);
    });
    m_withPhase.clear();
    for (const SeenSignal& seen : m_seen) {
        if (!std::isnan(seen.observation->phase) && seen.frequency > 0)
            m_withPhase.push_back(seen);
    }
    m_strength.take(epoch.time, m_seen);
    m_systems.take(epoch.time, m_seen);
    m_arcs.take(epoch.time, m_withPhase, m_epochs.getInterval() * 7 / 2);
    return true;
}

void QualityGatherer::Work::addDamage(const StreamGap& gap)
{
    ++m_damagedPlaces;
    if (m_time != 0)
        m_damage.hold(m_time, static_cast<double>(gap.bytes));
}

void QualityGatherer::Work::reportEpochs(Quality& quality, const EpochFollower& epochs) const
{
    quality.first = epochs.getFirst();
    quality.last = epochs.getLast();
    quality.interval = static_cast<double>(epochs.getUsual()) * 1e-3;
    quality.epochsFound = epochs.getFound();
    quality.epochsExpected = epochs.getFound() + epochs.getMissing();
    quality.outages = epochs.getOutageCount();
    quality.outageSeconds = static_cast<double>(epochs.getOutageMillis()) * 1e-3;
    quality.longestOutage = static_cast<double>(epochs.getLongest()) * 1e-3;
    for (const Episode& outage : epochs.getOutages()) {
        quality.findings.push_back(
            {FindingKind::Outage,
             outage.start,
             outage.end,
             {},
             secondsOf(outage),
             fmt::format("no {} for {:.6g} s", quality.isOfPositions ? "positions" : "measurements",
                         secondsOf(outage))});
    }
    quality.findingCounts[FindingKind::Outage] = quality.outages;
}

void QualityGatherer::Work::reportArcs(Quality& quality) const
{
    quality.slips = m_arcs.getSlipCount();
    quality.slipsByLock = m_arcs.getSlipsByLock();
    quality.slipList = m_arcs.getSlips();
    double squares = 0;
    uint64_t epochs = 0;
    for (SignalQuality& signal : quality.signals) {
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
        quality.multipath = std::sqrt(squares / static_cast<double>(epochs));
    for (SatelliteQuality& satellite : quality.satelliteList) {
        const auto found = m_arcs.getSatellites().find(satellite.satellite);
        if (found == m_arcs.getSatellites().end())
            continue;
        satellite.multipath = found->second.getMultipath();
        satellite.slips = found->second.slips;
    }
    for (const Slip& slip : quality.slipList) {
        const std::string how =
            slip.isLossOfLock ? "loss of lock" : fmt::format("phase jumps by {:.2f} m", slip.jump);
        quality.findings.push_back(
            {FindingKind::Slip, slip.time, slip.time, slip.satellite.text(), slip.jump,
             fmt::format("cycle slip on {} ({}): {}", slip.satellite.text(), slip.signals, how)});
    }
    quality.findingCounts[FindingKind::Slip] = quality.slips;
    const std::vector<Episode> multipath = m_arcs.findMultipath();
    for (const Episode& episode : multipath) {
        const std::string satellite = episode.subject.substr(0, 3);
        quality.findings.push_back({FindingKind::Multipath, episode.start, episode.end, satellite,
                                    episode.worst,
                                    fmt::format("multipath on {} ({}): {:.1f} m", satellite,
                                                episode.subject.substr(4), episode.worst)});
    }
    quality.findingCounts[FindingKind::Multipath] = multipath.size();
    Plot plot{"multipath", "Multipath by system, root mean square of a minute", "m", {}};
    for (const auto& [system, series] : m_arcs.getSeries())
        plot.series.push_back(series.get(systemName(system)));
    if (!plot.series.empty())
        quality.plots.push_back(std::move(plot));
}

void QualityGatherer::Work::reportSystems(Quality& quality) const
{
    quality.satellites = m_systems.getTracked().get();
    for (const Episode& outage : m_systems.getOutages()) {
        const char* const name = systemName(outage.subject.front());
        quality.findings.push_back(
            {FindingKind::SystemOutage, outage.start, outage.end, name, secondsOf(outage),
             fmt::format("no {} satellites for {:.6g} s", name, secondsOf(outage))});
    }
    quality.findingCounts[FindingKind::SystemOutage] = m_systems.getOutages().size();
}

/// What the receiver itself explains is not a separate finding.
void QualityGatherer::Work::reportWeak(Quality& quality)
{
    constexpr uint64_t near = 30000;
    std::vector<Finding> weak;
    for (const Episode& episode : m_strength.findWeak()) {
        const bool isExplained = std::any_of(
            quality.findings.begin(), quality.findings.end(), [&episode](const Finding& finding) {
                return (finding.kind == FindingKind::Interference ||
                        finding.kind == FindingKind::Antenna) &&
                       finding.start <= episode.end + near && episode.start <= finding.end + near;
            });
        if (isExplained)
            continue;
        weak.push_back({FindingKind::WeakSignals, episode.start, episode.end, episode.subject,
                        episode.worst,
                        fmt::format("C/N0 lower by {:.0f} dB on all satellites, {}", episode.worst,
                                    episode.subject)});
    }
    quality.findingCounts[FindingKind::WeakSignals] = weak.size();
    quality.findings.insert(quality.findings.end(), weak.begin(), weak.end());
}

void QualityGatherer::Work::reportCorrections(Quality& quality)
{
    const std::vector<Episode> old = m_positions.findOldCorrections();
    for (const Episode& episode : old) {
        quality.findings.push_back({FindingKind::Corrections,
                                    episode.start,
                                    episode.end,
                                    {},
                                    episode.worst,
                                    fmt::format("no corrections for {:.0f} s", episode.worst)});
    }
    quality.findingCounts[FindingKind::Corrections] = old.size();
}

void QualityGatherer::Work::reportDamage(Quality& quality, const StreamCounts& counts) const
{
    quality.bytes = counts.bytes;
    quality.blocks = counts.blocks;
    quality.damagedBytes = counts.droppedBytes;
    quality.damagedPlaces = m_damagedPlaces;
    quality.crcErrors = counts.crcErrors;
    quality.undecodable = counts.undecodable;
    Episodes damage = m_damage;
    for (const Episode& episode : damage.finish()) {
        quality.findings.push_back({FindingKind::Damage,
                                    episode.start,
                                    episode.end,
                                    {},
                                    episode.worst,
                                    fmt::format("{:.0f} bytes belong to no block", episode.worst)});
    }
    quality.findingCounts[FindingKind::Damage] = m_damagedPlaces;
}

Quality QualityGatherer::Work::finish(const StreamCounts& counts)
{
    m_gatherer.finish();
    m_epochs.finish();
    m_systems.finish();
    m_arcs.finish();
    m_positions.finish();
    Quality quality;
    const EpochFollower* epochs = &m_epochs;
    if (m_epochs.getFound() == 0 && m_positions.getEpochs()) {
        epochs = m_positions.getEpochs();
        quality.isOfPositions = true;
    }
    reportEpochs(quality, *epochs);
    quality.outOfOrder = m_gatherer.getLosses().outOfOrder;
    quality.clockJumps = m_clockJumps;
    quality.hasElevations = m_hasElevations;
    if (m_epochs.getFound() != 0) {
        reportSystems(quality);
        quality.plots.push_back(m_systems.getPlot());
        m_strength.report(quality);
        reportArcs(quality);
    }
    m_positions.report(quality);
    m_receiver.report(quality);
    reportWeak(quality);
    reportCorrections(quality);
    reportDamage(quality, counts);
    quality.sky = m_sky.getTracks();
    std::stable_sort(quality.findings.begin(), quality.findings.end(),
                     [](const Finding& a, const Finding& b) { return a.start < b.start; });
    return quality;
}

QualityGatherer::QualityGatherer(QualityOptions options)
    : m_work(std::make_unique<Work>(std::move(options)))
{
}

QualityGatherer::~QualityGatherer() = default;

bool QualityGatherer::wants(uint16_t blockNumber)
{
    return ObservationGatherer::wants(blockNumber) || SkyView::wants(blockNumber) ||
           ReceiverQuality::wants(blockNumber) || positionSource(blockNumber) != nullptr;
}

void QualityGatherer::take(const DecodedBlock& decoded)
{
    m_work->take(decoded);
}

void QualityGatherer::addDamage(const StreamGap& gap)
{
    m_work->addDamage(gap);
}

Quality QualityGatherer::finish(const StreamCounts& counts)
{
    return m_work->finish(counts);
}

} // namespace tqx::quality
