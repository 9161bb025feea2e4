#include "tqx/gnss/quality/ArcAnalysis.h"

#include "tqx/gnss/orbit/Geodesy.h"
#include "tqx/gnss/quality/SkyView.h"

#include <algorithm>
#include <cmath>

namespace tqx::quality
{

namespace
{

constexpr double slipLimit = 0.10;      ///< metres
constexpr double slipLimitRate = 0.003; ///< metres per second
constexpr uint64_t fewestInArc = 20;    ///< epochs
constexpr uint64_t fewestInBlock = 10;  ///< epochs
constexpr uint64_t blockMillis = 60000;
constexpr double strayCode = 1000;       ///< metres; no reflection does that
constexpr double conspicuous = 1;        ///< metres
constexpr double conspicuousRatio = 3.5; ///< to the median
constexpr size_t mostSlips = 2000;
constexpr size_t mostCandidates = 200000;

double lengthOf(const SeenSignal& seen)
{
    return seen.observation->phase * (speedOfLight / seen.frequency);
}

std::string textOf(const SignalCode& code)
{
    return {code.band, code.attribute};
}

bool isOnOtherFrequency(const SeenSignal& a, const SeenSignal& b)
{
    return std::fabs(a.frequency - b.frequency) > 1;
}

} // namespace

double ArcAnalysis::SignalFigures::getMultipath() const
{
    return epochs == 0 ? none : std::sqrt(squares / static_cast<double>(epochs));
}

void ArcAnalysis::take(GnssMillis time, const std::vector<SeenSignal>& signals,
                       uint64_t longestStep)
{
    const SeenSignal* const end = signals.data() + signals.size();
    for (const SeenSignal* begin = signals.data(); begin != end;) {
        const SeenSignal* next = begin;
        while (next != end && next->observation->satellite == begin->observation->satellite)
            ++next;
        takeSatellite(time, begin, next, longestStep);
        begin = next;
    }
}

void ArcAnalysis::takeSatellite(GnssMillis time, const SeenSignal* begin, const SeenSignal* end,
                                uint64_t longestStep)
{
    const SatelliteId& satellite = begin->observation->satellite;
    const size_t place = satellitePlace(satellite);
    if (place >= m_satellites.size())
        m_satellites.resize(place + 1);
    if (!m_satellites[place]) {
        m_satellites[place] = std::make_unique<SatelliteState>();
        m_satellites[place]->satellite = satellite;
    }
    SatelliteState& state = *m_satellites[place];
    for (SignalState& signal : state.signals) {
        if (signal.last != 0 && time - signal.last > longestStep) {
            closeArc(satellite, signal, signal.last);
            signal.last = 0;
        }
    }
    if (findSlip(time, state, begin, end, longestStep)) {
        for (SignalState& signal : state.signals)
            closeArc(satellite, signal, time);
    }
    for (const SeenSignal* seen = begin; seen != end; ++seen) {
        const SignalCode& code = seen->observation->code;
        auto found = std::find_if(state.signals.begin(), state.signals.end(),
                                  [&code](const SignalState& each) { return each.code == code; });
        if (found == state.signals.end()) {
            state.signals.emplace_back();
            found = state.signals.end() - 1;
            found->code = code;
        }
        found->last = time;
        found->length = lengthOf(*seen);
        const SeenSignal* const partner = std::find_if(begin, end, [seen](const SeenSignal& other) {
            return isOnOtherFrequency(*seen, other);
        });
        if (partner != end && !std::isnan(seen->observation->range))
            addMultipath(time, state, *found, *seen, *partner);
    }
}

/// Compares with the epoch before.
bool ArcAnalysis::findSlip(GnssMillis time, SatelliteState& state, const SeenSignal* begin,
                           const SeenSignal* end, uint64_t longestStep)
{
    Slip slip;
    std::vector<SignalCode> codes;
    size_t compared = 0;
    const SignalState* reference = nullptr;
    for (const SeenSignal* seen = begin; seen != end; ++seen) {
        const SignalCode& code = seen->observation->code;
        const auto known =
            std::find_if(state.signals.begin(), state.signals.end(),
                         [&code](const SignalState& each) { return each.code == code; });
        const bool isKnown =
            known != state.signals.end() && known->last != 0 && time - known->last <= longestStep;
        if (!isKnown)
            continue;
        bool isSlip = seen->observation->isLost;
        slip.isLossOfLock = slip.isLossOfLock || isSlip;
        if (seen == begin) {
            reference = &*known;
        } else if (reference && reference->last == known->last) {
            ++compared;
            const double jump = std::fabs((lengthOf(*begin) - lengthOf(*seen)) -
                                          (reference->length - known->length));
            const double elapsed = static_cast<double>(time - known->last) * 1e-3;
            if (jump > slipLimit + slipLimitRate * elapsed) {
                isSlip = true;
                slip.jump = std::isnan(slip.jump) ? jump : std::max(slip.jump, jump);
            }
        }
        if (isSlip)
            codes.push_back(code);
    }
    // When all others jump against the reference, it is the reference that jumps.
    if (!slip.isLossOfLock && compared > 1 && codes.size() == compared)
        codes = {begin->observation->code};
    if (codes.empty())
        return false;
    for (const SignalCode& code : codes) {
        slip.signals += (slip.signals.empty() ? "" : " ") + textOf(code);
        ++m_signals[{state.satellite.system, code}].slips;
    }
    ++m_slipCount;
    m_slipsByLock += slip.isLossOfLock ? 1 : 0;
    ++m_satelliteFigures[state.satellite].slips;
    if (m_slips.size() < mostSlips) {
        slip.time = time;
        slip.satellite = state.satellite;
        m_slips.push_back(slip);
    }
    return true;
}

void ArcAnalysis::addMultipath(GnssMillis time, SatelliteState& state, SignalState& signal,
                               const SeenSignal& seen, const SeenSignal& partner)
{
    const double own = seen.frequency * seen.frequency;
    const double other = partner.frequency * partner.frequency;
    const double length = lengthOf(seen);
    const double value =
        seen.observation->range - length - 2 * other / (own - other) * (length - lengthOf(partner));
    Arc& arc = signal.arc;
    const SignalCode& partnerCode = partner.observation->code;
    const bool isOther =
        !(arc.partner == partnerCode) || std::fabs(value - arc.all.getMean()) > strayCode;
    if (arc.all.getCount() != 0 && isOther)
        closeArc(state.satellite, signal, time);
    if (arc.block.getCount() != 0 && time - arc.blockStart >= blockMillis &&
        arc.block.getCount() >= fewestInBlock)
        closeBlock(state.satellite, signal, time);
    arc.partner = partnerCode;
    if (arc.block.getCount() == 0) {
        arc.blockStart = time;
        arc.blockMean = arc.all.getMean();
    }
    arc.all.add(value);
    arc.block.add(value);
    arc.elevations += seen.elevation;
}

void ArcAnalysis::closeBlock(const SatelliteId& satellite, SignalState& signal, GnssMillis time)
{
    constexpr uint64_t knownWell = 60; // epochs from which on the mean of an arc is known
    Arc& arc = signal.arc;
    const auto count = static_cast<double>(arc.block.getCount());
    double squares = arc.block.getSquares() / count;
    if (arc.all.getCount() >= knownWell + arc.block.getCount()) {
        const double offset = arc.block.getMean() - arc.blockMean;
        squares += offset * offset;
    }
    const double value = std::sqrt(squares);
    const double elevation = arc.elevations / count;
    const double scaled =
        std::isnan(elevation) ? value / 2 : value * std::sin(elevation * pi / 180);
    if (arc.block.getCount() >= fewestInBlock) {
        m_scaled[{satellite.system, signal.code}].add(scaled);
        m_series[satellite.system].add(arc.blockStart, value);
        if (value > conspicuous && m_candidates.size() < mostCandidates) {
            m_candidates.push_back({arc.blockStart, time, satellite, signal.code,
                                    static_cast<float>(value), static_cast<float>(scaled)});
        }
    }
    arc.block = {};
    arc.elevations = 0;
}

void ArcAnalysis::closeArc(const SatelliteId& satellite, SignalState& signal, GnssMillis time)
{
    Arc& arc = signal.arc;
    if (arc.block.getCount() != 0)
        closeBlock(satellite, signal, time);
    if (arc.all.getCount() >= fewestInArc) {
        for (SignalFigures* figures :
             {&m_signals[{satellite.system, signal.code}], &m_satelliteFigures[satellite]}) {
            figures->squares += arc.all.getSquares();
            figures->epochs += arc.all.getCount();
        }
    }
    arc = {};
}

void ArcAnalysis::finish()
{
    for (const auto& state : m_satellites) {
        if (!state)
            continue;
        for (SignalState& signal : state->signals)
            closeArc(state->satellite, signal, signal.last);
    }
}

std::vector<Episode> ArcAnalysis::findMultipath() const
{
    std::map<SignalKey, double> limits;
    for (const auto& [key, scaled] : m_scaled)
        limits[key] = scaled.get(0.5) * conspicuousRatio;
    // A single minute may be coincidence.
    struct Found {
        Episode episode;
        unsigned blocks;
    };
    std::map<SatelliteId, std::vector<Found>> found;
    std::vector<Candidate> all = m_candidates;
    std::stable_sort(all.begin(), all.end(),
                     [](const Candidate& a, const Candidate& b) { return a.start < b.start; });
    for (const Candidate& each : all) {
        if (each.scaled < limits[{each.satellite.system, each.code}])
            continue;
        std::vector<Found>& list = found[each.satellite];
        if (list.empty() || each.start > list.back().episode.end + 2 * blockMillis)
            list.push_back({{each.start, each.end, 0, each.satellite.text()}, 0});
        Episode& last = list.back().episode;
        ++list.back().blocks;
        last.end = std::max(last.end, each.end);
        last.worst = std::max(last.worst, double{each.value});
        if (last.subject.find(textOf(each.code)) == std::string::npos)
            last.subject += " " + textOf(each.code);
    }
    std::vector<Episode> episodes;
    for (const auto& [satellite, list] : found) {
        for (const Found& each : list) {
            if (each.blocks > 1)
                episodes.push_back(each.episode);
        }
    }
    return episodes;
}

} // namespace tqx::quality
