#pragma once

#include <cstdint>
#include <string>

namespace tqx
{

/// The supported versions of RINEX.
enum class RinexVersion : uint8_t { V305, V402 };

/// Options of the RINEX writers.
struct RinexOptions {
    RinexVersion version = RinexVersion::V305;
    std::string program; ///< for PGM / RUN BY / DATE, at most 20 characters
    std::string runBy;   ///< likewise
    std::string date;    ///< likewise: "20260106 120000 UTC"
    std::string marker;  ///< used instead of what the log says, if not empty
    std::string observer;
    std::string agency;
};

} // namespace tqx
