#include "tqx/gnss/quality/SkyView.h"

#include "TQX_codec.h"

#include <cmath>

namespace tqx::quality
{

using namespace Kor::MessageApi;

namespace
{

constexpr uint16_t satVisibility1 = 4012;
constexpr uint16_t channelStatus = 4013;
constexpr uint64_t longest = 300000; ///< milliseconds for which a direction is valid

} // namespace

bool SkyView::wants(uint16_t blockNumber)
{
    return blockNumber == satVisibility1 || blockNumber == channelStatus;
}

void SkyView::set(uint8_t svid, double azimuth, double elevation, GnssMillis time)
{
    const auto satellite = satelliteOf(svid);
    if (!satellite)
        return;
    const size_t index = satellitePlace(*satellite);
    if (index >= m_places.size())
        m_places.resize(index + 1);
    Place& place = m_places[index];
    place.time = time;
    place.azimuth = static_cast<float>(azimuth);
    place.elevation = static_cast<float>(elevation);
    constexpr double step = 2.5;       // degrees
    constexpr size_t mostPoints = 600; // of a satellite
    std::vector<SkyPoint>& points = place.track.points;
    place.track.satellite = *satellite;
    if (elevation < 0 || points.size() >= mostPoints)
        return;
    if (!points.empty() && time - points.back().time < 3 * longest) {
        const SkyPoint& last = points.back();
        const double turn = std::remainder(azimuth - double{last.azimuth}, 360.0) *
                            std::cos(elevation * 3.14159265358979 / 180);
        if (std::hypot(turn, elevation - double{last.elevation}) < step)
            return;
    }
    points.push_back({time, place.azimuth, place.elevation});
}

void SkyView::take(uint16_t blockNumber, const void* record, GnssMillis time)
{
    if (blockNumber == satVisibility1) {
        const auto& visibility = *static_cast<const TQX_SatVisibility1_s*>(record);
        m_visibility = time;
        for (uint32_t i = 0; i < visibility.N; ++i) {
            const TQX_SatInfo_s& info = visibility.SatInfo[i];
            if (info.Azimuth != 65535 && info.Elevation != INT16_MIN)
                set(info.SVID, info.Azimuth * 0.01, info.Elevation * 0.01, time);
        }
        return;
    }
    if (m_visibility != 0 && time < m_visibility + longest)
        return;
    const auto& channels = *static_cast<const TQX_ChannelStatus_s*>(record);
    for (uint32_t i = 0; i < channels.N; ++i) {
        const TQX_ChannelSatInfo_s& info = channels.SatInfo[i];
        if (info.Azimuth != 511 && info.Elevation != INT8_MIN)
            set(info.SVID, info.Azimuth, info.Elevation, time);
    }
}

double SkyView::elevation(const SatelliteId& satellite, GnssMillis time) const
{
    const size_t index = satellitePlace(satellite);
    if (index >= m_places.size() || m_places[index].time == 0)
        return none;
    const Place& place = m_places[index];
    const uint64_t age = time > place.time ? time - place.time : place.time - time;
    return age <= longest ? double{place.elevation} : none;
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
