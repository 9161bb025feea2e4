#pragma once

#include "tqx/gnss/navigation/Ephemeris.h"
#include "tqx/gnss/orbit/Geodesy.h"
#include "tqx/gnss/quality/Quality.h"
#include "tqx/log/record/DecodedBlock.h"

#include <memory>
#include <optional>
#include <vector>

namespace tqx::quality
{

/// Place of a satellite in tables by satellite.
constexpr size_t satellitePlace(const SatelliteId& satellite)
{
    return size_t{systemIndex(satellite.system)} * 256 + satellite.number;
}

/// Where satellites are, according to the receiver's blocks on visibility or, without those, on
/// channels; without both, computed from ephemerides and the place of the antenna. Keeps the last
/// ephemeris of each satellite.
class SkyView
{
public:
    static bool wants(uint16_t blockNumber);

    /// A block that is wanted.
    void take(const DecodedBlock& decoded, GnssMillis time);

    /// Where the antenna is now, earth-fixed.
    void setAntenna(const Vector& place);
    bool hasAntenna() const { return m_antenna.has_value(); }

    struct Elevation {
        double degrees = none; ///< above the horizon, NaN when it is not known
        ElevationSource source = ElevationSource::None;
    };

    /// At a time. What the receiver reports is valid for five minutes.
    Elevation elevation(const SatelliteId& satellite, GnssMillis time);

    /// The tracks, thinned to steps of some degrees.
    std::vector<SkyTrack> getTracks() const;

private:
    struct Place {
        GnssMillis time = 0; ///< of the direction, 0 without one
        double elevation = 0;
        ElevationSource source = ElevationSource::None;
        std::unique_ptr<const Ephemeris> ephemeris;
        SkyTrack track;
    };

    Place& placeOf(const SatelliteId& satellite);
    void set(const SatelliteId& satellite, double azimuth, double elevation, GnssMillis time,
             ElevationSource source);
    void takeVisibility(const void* record, GnssMillis time);
    void takeChannels(const void* record, GnssMillis time);
    bool compute(const SatelliteId& satellite, const Ephemeris& ephemeris, GnssMillis time);

    std::vector<Place> m_places;
    std::optional<Vector> m_antenna;
    std::optional<LocalFrame> m_frame; ///< at the antenna
    Vector m_frameOrigin = {};
    GnssMillis m_visibility = 0; ///< time of the last block that has it with two decimals
};

} // namespace tqx::quality
