#pragma once

#include "tqx/gnss/rinex/SetUp.h"
#include "tqx/log/time/GnssTime.h"
#include "tqx_gnss_export.h"

#include <string>

namespace tqx
{

/// What a long file name of RINEX is made of.
struct NameParts {
    std::string marker; ///< given by the caller, else empty
    SetUp setUp;
    uint8_t antenna = 0; ///< each has a number of its own after that of the marker
    GnssMillis first = 0;
    GnssMillis last = 0;
    GnssMillis interval = 0; ///< 0 when it is not known
};

/// "GRAZ00AUT_R_20260061200_01H_01S_MO.rnx": site, marker and receiver number, country, start,
/// length, interval and kind. A marker given as "GRAZ00AUT" has the first four. Characters of the
/// marker that names cannot have are left out; an unknown country is three times X.
TQX_GNSS_API std::string observationFileName(const NameParts& parts);

/// The same of a navigation file: "GRAZ00AUT_R_20260061200_01H_MN.rnx".
TQX_GNSS_API std::string navigationFileName(const NameParts& parts);

} // namespace tqx
