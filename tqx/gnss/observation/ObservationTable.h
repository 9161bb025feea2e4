#pragma once

#include "tqx/gnss/observation/Observation.h"
#include "tqx/gnss/table/TableRows.h"
#include "tqx_gnss_export.h"

namespace tqx
{

/// Observations as a long table: one row per epoch, satellite, signal and antenna.
class TQX_GNSS_API ObservationTable
{
public:
    /// Begins a table "observations". The target must outlive it.
    explicit ObservationTable(TableTarget& target);

    /// Writes the rows of an epoch.
    void write(const ObservationEpoch& epoch);

private:
    std::unique_ptr<TableRows> m_rows;
};

} // namespace tqx
