#pragma once

#include "tqx/gnss/navigation/NavigationStore.h"
#include "tqx/gnss/observation/EpochSelection.h"
#include "tqx/gnss/rinex/LogSurvey.h"
#include "tqx/gnss/rinex/RinexOptions.h"
#include "tqx/log/text/Buffer.h"
#include "tqx_gnss_export.h"

#include <optional>

namespace tqx
{

/// Whether files of this version have a record for an ephemeris: records of civil messages exist
/// since version 4.
TQX_GNSS_API bool isWritten(const Ephemeris& ephemeris, RinexVersion version);

/// Writes a navigation file in RINEX 3.05 or 4.02 (public documents of IGS and RTCM) with
/// everything in the store for which the version has records: ephemerides of the selected
/// satellites, in the order of their reference times. In 3.05 the last parameters of the ionosphere
/// and offsets of each system are in the header, in 4.02 all of them are records.
TQX_GNSS_API void writeNavigationFile(Buffer& out, const NavigationStore& store,
                                      const EpochSelection& selection,
                                      const std::optional<LeapSecondsInfo>& leapSeconds,
                                      const RinexOptions& options);

} // namespace tqx
