#pragma once

#include "tqx/gnss/rinex/SetUp.h"
#include "tqx/log/time/GnssTime.h"
#include "tqx_gnss_export.h"

#include <string>

namespace tqx
{

/// The parts of a long RINEX file name.
struct NameParts {
    std::string marker; ///< given by the caller, else empty
    SetUp setUp;
    uint8_t antenna = 0; ///< each has a number of its own after that of the marker
    GnssMillis first = 0;
    GnssMillis last = 0;
    GnssMillis interval = 0; ///< 0 when it is not known
};

/// "GRAZ00AUT_R_20260061200_01H_01S_MO.rnx": site, marker and receiver number, country, start,
/// length, interval and kind. A marker such as "GRAZ00AUT" provides the first four. Characters that
/// names cannot have are dropped from the marker; an unknown country becomes three X.
TQX_GNSS_API std::string observationFileName(const NameParts& parts);

/// The same for a navigation file: "GRAZ00AUT_R_20260061200_01H_MN.rnx".
TQX_GNSS_API std::string navigationFileName(const NameParts& parts);

} // namespace tqx
