#pragma once

#include "tqx/log/record/DecodedBlock.h"
#include "tqx_gnss_export.h"

#include <cstdint>
#include <optional>
#include <string>

namespace tqx
{

/// How a receiver was installed, for headers of observation files. Texts are printable ASCII.
struct TQX_GNSS_API SetUp {
    std::string marker;
    std::string markerNumber;
    std::string markerType;
    std::string observer;
    std::string agency;
    std::string receiverNumber;
    std::string receiverType;
    std::string receiverVersion;
    std::string antennaNumber;
    std::string antennaType;
    double height = 0; ///< of the antenna reference point above the marker, metres
    double east = 0;   ///< of the antenna from the marker, metres
    double north = 0;
    std::string site;    ///< four letters or fewer
    std::string country; ///< three letters or none
    uint8_t monument = 0;
    uint8_t receiver = 0;
    bool hasPosition = false;
    double x = 0; ///< of the marker, earth-fixed metres
    double y = 0;
    double z = 0;

    /// Number of the block that describes the installation.
    static constexpr uint16_t blockNumber = 5902;

    /// Converts such a block.
    static SetUp of(const DecodedBlock& decoded);

    friend TQX_GNSS_API bool operator==(const SetUp& a, const SetUp& b);
    friend bool operator!=(const SetUp& a, const SetUp& b) { return !(a == b); }
};

} // namespace tqx
