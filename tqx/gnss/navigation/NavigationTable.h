#pragma once

#include "tqx/gnss/navigation/NavigationStore.h"
#include "tqx/gnss/table/TableRows.h"
#include "tqx_gnss_export.h"

namespace tqx
{

/// Ephemerides as a table with all parameters as columns; what a message does not
/// have is missing. Reference is a date by the clock of the system.
TQX_GNSS_API void writeEphemerides(TableTarget& target, const std::vector<Ephemeris>& ephemerides);

/// Parameters of the ionosphere, likewise.
TQX_GNSS_API void writeIonosphere(TableTarget& target, const std::vector<Ionosphere>& rows);

/// Offsets of time systems, likewise.
TQX_GNSS_API void writeTimeOffsets(TableTarget& target, const std::vector<TimeOffset>& rows);

} // namespace tqx
