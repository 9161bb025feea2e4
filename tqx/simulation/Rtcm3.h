#pragma once

#include "tqx/gnss/orbit/Geodesy.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tqx::simulation
{

/// A reference station as RTCM 10403 describes it. Texts of at most 31 characters.
struct ReferenceStation {
    uint16_t number;
    Vector position;      ///< of the antenna reference point
    double antennaHeight; ///< above the marker, metres
    std::string antenna;
    std::string antennaSerial;
    std::string receiver;
    std::string firmware;
    std::string receiverSerial;
};

/// Complete RTCM 3 frames with preamble and CRC-24Q: message 1005, the position of the station,
std::vector<uint8_t> rtcm3Position(const ReferenceStation& station);
/// 1006, the same with the height of the antenna,
std::vector<uint8_t> rtcm3PositionAndHeight(const ReferenceStation& station);
/// and 1033, its antenna and receiver.
std::vector<uint8_t> rtcm3Equipment(const ReferenceStation& station);

} // namespace tqx::simulation
