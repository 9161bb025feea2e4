#pragma once

#include "Geodesy.h"

#include <cstdint>
#include <vector>

namespace tool
{

/// A whole RTCM 3 frame with message 1005, the position of a reference station.
std::vector<uint8_t> rtcm3StationMessage(uint16_t station, const Vector& position);

} // namespace tool
