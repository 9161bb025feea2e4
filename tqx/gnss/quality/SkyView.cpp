#include "tqx/gnss/quality/SkyView.h"

#include "tqx/gnss/navigation/SatellitePosition.h"

#include "TQX_codec.h"

#include <cmath>

namespace tqx::quality
{

using namespace Kor::MessageApi;

namespace
{

constexpr uint16_t satVisibility1 = 4012;
constexpr uint16_t channelStatus = 4013;
constexpr uint64_t longest = 300000;        ///< milliseconds for which a direction is valid
constexpr uint64_t computedLongest = 10000; ///< milliseconds, of computed ones
constexpr double degree = pi / 180;

uint64_t between(GnssMillis a, GnssMillis b)
{
    return a > b ? a - b : b - a;
}

} // namespace

bool SkyView::wants(uint16_t blockNumber)
{
    return blockNumber == satVisibility1 || blockNumber == channelStatus ||
           Ephemeris::wants(blockNumber);
}

SkyView::Place& SkyView::placeOf(const SatelliteId& satellite)
{
    const size_t index = satellitePlace(satellite);
    if (index >= m_places.size())
        m_places.resize(index + 1);
    return m_places[index];
}

void SkyView::set(const SatelliteId& satellite, double azimuth, double elevation, GnssMillis time,
                  ElevationSource source)
{
    Place& place = placeOf(satellite);
    place.time = time;
    place.elevation = elevation;
    place.source = source;
    constexpr double step = 2.5;       // degrees
    constexpr size_t mostPoints = 600; // of a satellite
    std::vector<SkyPoint>& points = place.track.points;
    place.track.satellite = satellite;
    if (elevation < 0 || points.size() >= mostPoints)
        return;
    if (!points.empty() && time - points.back().time < 3 * longest) {
        const SkyPoint& last = points.back();
        const double turn =
            std::remainder(azimuth - double{last.azimuth}, 360.0) * std::cos(elevation * degree);
        if (std::hypot(turn, elevation - double{last.elevation}) < step)
            return;
    }
    points.push_back({time, static_cast<float>(azimuth), static_cast<float>(elevation)});
}

void SkyView::take(const DecodedBlock& decoded, GnssMillis time)
{
    switch (decoded.block.getNumber()) {
    case satVisibility1:
        return takeVisibility(decoded.record, time);
    case channelStatus:
        return takeChannels(decoded.record, time);
    default:
        if (const auto ephemeris = Ephemeris::of(decoded))
            placeOf(ephemeris->satellite).ephemeris = std::make_unique<Ephemeris>(*ephemeris);
    }
}

void SkyView::takeVisibility(const void* record, GnssMillis time)
{
    const auto& visibility = *static_cast<const TQX_SatVisibility1_s*>(record);
    m_visibility = time;
    for (uint32_t i = 0; i < visibility.N; ++i) {
        const TQX_SatInfo_s& info = visibility.SatInfo[i];
        const auto satellite = satelliteOf(info.SVID);
        if (satellite && info.Azimuth != 65535 && info.Elevation != INT16_MIN) {
            set(*satellite, info.Azimuth * 0.01, info.Elevation * 0.01, time,
                ElevationSource::Visibility);
        }
    }
}

void SkyView::takeChannels(const void* record, GnssMillis time)
{
    if (m_visibility != 0 && time < m_visibility + longest)
        return;
    const auto& channels = *static_cast<const TQX_ChannelStatus_s*>(record);
    for (uint32_t i = 0; i < channels.N; ++i) {
        const TQX_ChannelSatInfo_s& info = channels.SatInfo[i];
        const auto satellite = satelliteOf(info.SVID);
        if (satellite && info.Azimuth != 511 && info.Elevation != INT8_MIN)
            set(*satellite, info.Azimuth, info.Elevation, time, ElevationSource::Channels);
    }
}

void SkyView::setAntenna(const Vector& place)
{
    constexpr double near = 1000; // metres over which the vertical turns by a hundredth of a degree
    m_antenna = place;
    if (m_frame && length(place - m_frameOrigin) < near)
        return;
    m_frame.emplace(toGeodetic(place));
    m_frameOrigin = place;
}

bool SkyView::compute(const SatelliteId& satellite, const Ephemeris& ephemeris, GnssMillis time)
{
    const auto position = satellitePosition(ephemeris, time);
    if (!position)
        return false;
    const Vector local = m_frame->toLocal(*position - *m_antenna);
    const double azimuth = std::atan2(local.x, local.y) / degree;
    set(satellite, azimuth < 0 ? azimuth + 360 : azimuth,
        std::atan2(local.z, std::hypot(local.x, local.y)) / degree, time,
        ElevationSource::Ephemerides);
    return true;
}

SkyView::Elevation SkyView::elevation(const SatelliteId& satellite, GnssMillis time)
{
    const size_t index = satellitePlace(satellite);
    if (index >= m_places.size())
        return {};
    const Place& place = m_places[index];
    const bool isComputed = place.source == ElevationSource::Ephemerides;
    const bool isKnown =
        place.time != 0 && between(time, place.time) <= (isComputed ? computedLongest : longest);
    const bool isNow =
        isKnown || (m_antenna && place.ephemeris && compute(satellite, *place.ephemeris, time));
    return isNow ? Elevation{place.elevation, place.source} : Elevation();
}

std::vector<SkyTrack> SkyView::getTracks() const
{
    std::vector<SkyTrack> tracks;
    for (const Place& place : m_places) {
        if (!place.track.points.empty())
            tracks.push_back(place.track);
    }
    return tracks;
}

} // namespace tqx::quality
