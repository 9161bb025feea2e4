#include "tqx/gnss/rinex/LogSurvey.h"

#include "tqx/gnss/orbit/Geodesy.h"

#include "TQX_codec.h"

#include <algorithm>
#include <iterator>

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

constexpr uint16_t gloNav = 4004;
constexpr uint16_t gloAlm = 4005;
constexpr uint16_t pvtCartesian2 = 4006;
constexpr uint16_t pvtGeodetic2 = 4007;
constexpr uint16_t gpsUtc = 5894;
constexpr uint16_t pvtCartesian1 = 5903;
constexpr uint16_t pvtGeodetic1 = 5904;
constexpr uint16_t receiverTime = 5914;

constexpr uint16_t wanted[] = {gloNav,        gloAlm,       pvtCartesian2,
                               pvtGeodetic2,  gpsUtc,       SetUp::blockNumber,
                               pvtCartesian1, pvtGeodetic1, receiverTime};

constexpr double noValue = -2e10;

/// More different intervals than a log with a rate has.
constexpr size_t mostIntervals = 1000;

template<typename Record>
const Record& as(const void* record)
{
    return *static_cast<const Record*>(record);
}

void addTime(AntennaSurvey& antenna, GnssMillis time)
{
    if (antenna.epochs != 0 && antenna.last == time)
        return;
    if (antenna.epochs == 0) {
        antenna.first = time;
    } else if (antenna.intervals.size() < mostIntervals) {
        ++antenna.intervals[time - antenna.last];
    }
    antenna.last = time;
    ++antenna.epochs;
}

/// A small number that is not a character.
int numberOf(int8_t value)
{
    return value; // NOLINT(bugprone-signed-char-misuse)
}

LeapSecondsInfo leapSecondsOf(const TQX_GPSUtc_s& record)
{
    LeapSecondsInfo info;
    info.current = numberOf(record.DEL_t_LS);
    if (record.WN_LSF == 65535 || record.DN == 0)
        return info;
    info.hasFuture = true;
    info.future = numberOf(record.DEL_t_LSF);
    info.week = record.WN_LSF;
    info.day = record.DN;
    const uint64_t effective = uint64_t{info.week} * 7 + info.day;
    const uint64_t today = uint64_t{record.WNc} * 7 + record.TOW / 86400000;
    if (today >= effective)
        info.current = info.future;
    return info;
}

} // namespace

GnssMillis AntennaSurvey::getInterval() const
{
    const auto most =
        std::max_element(intervals.begin(), intervals.end(),
                         [](const auto& a, const auto& b) { return a.second < b.second; });
    return most == intervals.end() ? 0 : most->first;
}

bool LogSurvey::wants(uint16_t blockNumber)
{
    return std::find(std::begin(wanted), std::end(wanted), blockNumber) != std::end(wanted);
}

void LogSurvey::takePlace(uint8_t error, double x, double y, double z)
{
    if (!m_place && error == 0 && x != noValue && y != noValue && z != noValue)
        m_place = Place{x, y, z};
}

void LogSurvey::takeChannel(uint8_t svid, uint8_t slot)
{
    const auto satellite = satelliteOf(svid);
    if (satellite && satellite->system == 'R' && slot != 0)
        m_channels[satellite->number] = static_cast<int8_t>(slot - 8);
}

void LogSurvey::take(const DecodedBlock& decoded)
{
    const void* const block = decoded.record;
    const auto takeCartesian = [&](const auto& record) {
        takePlace(record.Error, record.X, record.Y, record.Z);
    };
    const auto takeGeodetic = [&](const auto& record) {
        if (record.Latitude == noValue || record.Longitude == noValue || record.Height == noValue)
            return;
        const Vector place = toEarthFixed({record.Latitude, record.Longitude, record.Height});
        takePlace(record.Error, place.x, place.y, place.z);
    };
    switch (decoded.block.getNumber()) {
    case gloNav:
        return takeChannel(as<TQX_GLONav_s>(block).SVID, as<TQX_GLONav_s>(block).FreqNr);
    case gloAlm:
        return takeChannel(as<TQX_GLOAlm_s>(block).SVID, as<TQX_GLOAlm_s>(block).FreqNr);
    case pvtCartesian2:
        return takeCartesian(as<TQX_PVTCartesian2_s>(block));
    case pvtCartesian1:
        return takeCartesian(as<TQX_PVTCartesian1_s>(block));
    case pvtGeodetic2:
        return takeGeodetic(as<TQX_PVTGeodetic2_s>(block));
    case pvtGeodetic1:
        return takeGeodetic(as<TQX_PVTGeodetic1_s>(block));
    case gpsUtc:
        m_leapSeconds = leapSecondsOf(as<TQX_GPSUtc_s>(block));
        m_isReceived = true;
        return;
    case receiverTime:
        if (const int8_t current = as<TQX_ReceiverTime_s>(block).DeltaLS;
            current != -128 && !m_isReceived) {
            m_leapSeconds.emplace();
            m_leapSeconds->current = numberOf(current);
        }
        return;
    case SetUp::blockNumber:
        // Later ones are changes, which the file reports where they occur.
        if (!m_setUp || m_antennas.empty())
            m_setUp = SetUp::of(decoded);
        return;
    default:
        return;
    }
}

void LogSurvey::take(const ObservationEpoch& epoch)
{
    AntennaSurvey* antenna = nullptr;
    uint8_t number = 0;
    for (const Observation& observation : epoch.observations) {
        if (!hasValue(observation))
            continue;
        if (!antenna || number != observation.antenna) {
            number = observation.antenna;
            antenna = &m_antennas[number];
            addTime(*antenna, epoch.time);
        }
        const SatelliteId& satellite = observation.satellite;
        const size_t place =
            (size_t{number} * systemCount + systemIndex(satellite.system)) * 256 + satellite.number;
        if (place >= m_counts.size())
            m_counts.resize(place + 1);
        if (!m_counts[place])
            m_counts[place] = std::make_unique<SatelliteCounts>();
        AntennaSurvey::Counts& counts = (*m_counts[place])[placeOf(observation.code)];
        for (unsigned kind = 0; kind < valueKinds; ++kind) {
            if (!std::isnan(valueOf(observation, static_cast<ValueKind>(kind))))
                ++counts[kind];
        }
        if (isFdma(observation.signal) && observation.channel >= -7)
            antenna->channels[satellite.number] = observation.channel;
    }
}

void LogSurvey::finish()
{
    for (size_t place = 0; place < m_counts.size(); ++place) {
        if (!m_counts[place])
            continue;
        const auto system = static_cast<unsigned>(place / 256 % systemCount);
        SatelliteId satellite;
        satellite.system = systemLetters[system];
        satellite.number = static_cast<uint8_t>(place % 256);
        AntennaSurvey& antenna = m_antennas[static_cast<uint8_t>(place / 256 / systemCount)];
        for (size_t i = 0; i < m_counts[place]->size(); ++i) {
            const AntennaSurvey::Counts& counts = (*m_counts[place])[i];
            if (counts == AntennaSurvey::Counts{})
                continue;
            const SignalCode code = {static_cast<char>('0' + i / 26),
                                     static_cast<char>('A' + i % 26)};
            antenna.satellites[satellite][code] = counts;
            AntennaSurvey::Counts& all = antenna.signals[system][code];
            for (unsigned kind = 0; kind < valueKinds; ++kind)
                all[kind] += counts[kind];
        }
    }
    m_counts.clear();
}

} // namespace tqx
