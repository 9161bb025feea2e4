#pragma once

#include "tqx/gnss/quality/Quality.h"

#include <vector>

namespace tqx::quality
{

/// Place of a satellite in tables by satellite.
constexpr size_t satellitePlace(const SatelliteId& satellite)
{
    return size_t{systemIndex(satellite.system)} * 256 + satellite.number;
}

/// Where satellites are, according to the receiver's blocks on visibility and channels.
class SkyView
{
public:
    static bool wants(uint16_t blockNumber);

    /// The record of a block that is wanted.
    void take(uint16_t blockNumber, const void* record, GnssMillis time);

    /// Degrees above the horizon at a time, NaN when it was not reported within the last minutes.
    double elevation(const SatelliteId& satellite, GnssMillis time) const;

    /// The tracks, thinned to steps of some degrees.
    std::vector<SkyTrack> getTracks() const;

private:
    struct Place {
        GnssMillis time = 0;
        float azimuth = 0;
        float elevation = 0;
        SkyTrack track;
    };

    void set(uint8_t svid, double azimuth, double elevation, GnssMillis time);

    std::vector<Place> m_places;
    GnssMillis m_visibility = 0; ///< time of the last block that has it with two decimals
};

} // namespace tqx::quality
