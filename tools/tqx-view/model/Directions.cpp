#include "model/Directions.h"

#include <TQX_RecordAccess.h>
#include <TQX_codec.h>

#include <optional>

using namespace Kor::MessageApi;

namespace tqx::view
{

namespace
{

constexpr uint16_t visibilityNumber = 4012;
constexpr uint16_t noAzimuth = 65535;
constexpr int16_t noElevation = -32768;
constexpr float unit = 0.01F; // degrees

} // namespace

bool holdsDirections(uint16_t blockNumber)
{
    return blockNumber == visibilityNumber;
}

std::vector<Direction> directionsIn(const void* record)
{
    std::vector<Direction> directions;
    const auto& visibility = *static_cast<const TQX_SatVisibility1_s*>(record);
    for (unsigned i = 0; i < visibility.N; ++i) {
        const TQX_SatInfo_s& info = visibility.SatInfo[i];
        const std::optional<SatelliteId> satellite = satelliteOf(info.SVID);
        if (!satellite || info.Azimuth == noAzimuth || info.Elevation == noElevation)
            continue;
        directions.push_back({*satellite, static_cast<float>(info.Azimuth) * unit,
                              static_cast<float>(info.Elevation) * unit});
    }
    return directions;
}

} // namespace tqx::view
