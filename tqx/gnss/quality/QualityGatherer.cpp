#include "tqx/gnss/quality/QualityGatherer.h"

#include "tqx/gnss/observation/ObservationGatherer.h"
#include "tqx/gnss/quality/AntennaAnalysis.h"
#include "tqx/gnss/quality/EpochFollower.h"
#include "tqx/gnss/quality/PositionQuality.h"
#include "tqx/gnss/quality/ReceiverQuality.h"
#include "tqx/gnss/quality/SkyView.h"

#include <fmt/format.h>

#include <algorithm>
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

double secondsOf(const Episode& episode)
{
    return static_cast<double>(episode.end - episode.start) * 1e-3;
}

} // namespace

const char* nameOf(FindingKind kind)
{
    return kindNames[static_cast<size_t>(kind)].name;
}

const char* nameOf(ElevationSource source)
{
    constexpr const char* names[elevationSourceCount] = {"none", "visibility", "channels",
                                                         "ephemerides"};
    return names[static_cast<size_t>(source)];
}

class QualityGatherer::Work
{
public:
    explicit Work(QualityOptions options)
        : m_mask(options.mask), m_reference(std::move(options.reference)), m_positions(m_reference),
          m_gatherer([this](ObservationEpoch& epoch) { return takeEpoch(epoch); })
    {
        if (m_reference.fixed)
            m_sky.setAntenna(earthFixed(*m_reference.fixed));
    }

    void take(const DecodedBlock& decoded);
    void addDamage(const StreamGap& gap);
    Quality finish(const StreamCounts& counts);

private:
    bool takeEpoch(ObservationEpoch& epoch);
    void placeAntenna(const Position& position);
    void placeAntenna(GnssMillis time);
    AntennaAnalysis& antennaOf(uint8_t number);
    void reportEpochs(Quality& quality, const EpochFollower& epochs) const;
    void reportAntennas(Quality& quality);
    void reportWeak(Quality& quality);
    void reportCorrections(Quality& quality);
    void reportDamage(Quality& quality, const StreamCounts& counts) const;

    double m_mask;
    Reference m_reference;
    SkyView m_sky;
    bool m_hasOwnPlace = false; ///< the antenna is where the log's positions say
    EpochFollower m_epochs;
    AntennaAnalysis m_main{0};
    std::vector<std::unique_ptr<AntennaAnalysis>> m_others; ///< from antenna 1 on, some null
    PositionQuality m_positions;
    ReceiverQuality m_receiver;
    ObservationGatherer m_gatherer;
    std::array<uint64_t, elevationSourceCount> m_elevationSources = {};
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
            m_sky.take(decoded, *time);
        } else if (ReceiverQuality::wants(number)) {
            m_receiver.take(number, decoded.record, *time);
        } else if (positionSource(number)) {
            Position position;
            if (readPosition(decoded.record, position)) {
                m_positions.take(position);
                placeAntenna(position);
            }
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
    placeAntenna(epoch.time);
    for (const Observation& observation : epoch.observations) {
        AntennaAnalysis& antenna = antennaOf(observation.antenna);
        antenna.see();
        const SkyView::Elevation elevation = m_sky.elevation(observation.satellite, epoch.time);
        ++m_elevationSources[static_cast<size_t>(elevation.source)];
        if (elevation.degrees < m_mask)
            continue;
        antenna.add({&observation, elevation.degrees,
                     carrierFrequency(observation.signal, observation.channel)});
    }
    m_main.closeEpoch(epoch.time, m_epochs.getInterval());
    for (const auto& other : m_others) {
        if (other)
            other->closeEpoch(epoch.time, m_epochs.getInterval());
    }
    return true;
}

/// The reference is where it really is.
void QualityGatherer::Work::placeAntenna(const Position& position)
{
    if (m_reference.fixed || position.fix == Fix::None || std::isnan(position.latitude) ||
        std::isnan(position.longitude))
        return;
    m_sky.setAntenna(earthFixed({position.latitude, position.longitude, position.height}));
    m_hasOwnPlace = true;
}

/// Without positions of its own, a log has those of the reference at that time.
void QualityGatherer::Work::placeAntenna(GnssMillis time)
{
    if (m_hasOwnPlace || m_reference.track.empty())
        return;
    const auto found = std::lower_bound(
        m_reference.track.begin(), m_reference.track.end(), time,
        [](const Reference::TimedPlace& each, GnssMillis wanted) { return each.time < wanted; });
    const auto& near = found == m_reference.track.end() ? m_reference.track.back() : *found;
    m_sky.setAntenna(earthFixed(near.place));
}

AntennaAnalysis& QualityGatherer::Work::antennaOf(uint8_t number)
{
    if (number == 0)
        return m_main;
    if (m_others.size() < number)
        m_others.resize(number);
    std::unique_ptr<AntennaAnalysis>& other = m_others[number - 1U];
    if (!other)
        other = std::make_unique<AntennaAnalysis>(number);
    return *other;
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
    if (epochs.getUsual() != 0)
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

void QualityGatherer::Work::reportAntennas(Quality& quality)
{
    m_main.finish();
    m_main.reportEpochs(quality, quality);
    m_main.report(quality, quality);
    for (const auto& other : m_others) {
        if (!other)
            continue;
        other->finish();
        AntennaQuality& antenna = quality.otherAntennas.emplace_back();
        other->reportEpochs(antenna, quality);
        other->report(antenna, quality);
    }
}

void QualityGatherer::Work::reportWeak(Quality& quality)
{
    m_main.reportWeak(quality, quality);
    for (AntennaQuality& antenna : quality.otherAntennas)
        m_others[antenna.number - 1U]->reportWeak(antenna, quality);
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
    quality.elevationSources = m_elevationSources;
    quality.hasElevations = std::any_of(m_elevationSources.begin() + 1, m_elevationSources.end(),
                                        [](uint64_t observations) { return observations != 0; });
    if (m_epochs.getFound() != 0)
        reportAntennas(quality);
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
