#pragma once

#include "tqx/gnss/observation/Observation.h"
#include "tqx/gnss/table/RowWriter.h"
#include "tqx_gnss_export.h"

namespace tqx
{

/// Observations as a long table: a row for each epoch, satellite, signal and antenna.
class TQX_GNSS_API ObservationTable
{
public:
    explicit ObservationTable(RowFormat format);

    /// What comes before the rows.
    void writeHead(Buffer& out) const { m_rows.writeHead(out); }

    /// The rows of an epoch.
    void write(Buffer& out, const ObservationEpoch& epoch);

private:
    RowWriter m_rows;
};

} // namespace tqx
