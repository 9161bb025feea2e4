#pragma once

#include "tqx/gnss/table/TableRows.h"
#include "tqx/log/text/Buffer.h"
#include "tqx_gnss_export.h"

#include <memory>
#include <vector>

namespace tqx
{

/// How the rows of a table are written as text.
enum class RowFormat : uint8_t {
    Csv,      ///< a line of names with units, then one line per row; missing cells are empty
    JsonLines ///< one object per row; missing values are null
};

/// A table as text in a buffer, which may be emptied between any two rows.
class TQX_GNSS_API TextTable : public TableTarget
{
public:
    /// `out` must outlive it.
    TextTable(RowFormat format, Buffer& out) : m_format(format), m_out(out) {}

    /// Appends the head of the table. The name is not written.
    std::unique_ptr<TableRows> open(const char* name,
                                    const std::vector<TableColumn>& columns) override;

private:
    RowFormat m_format;
    Buffer& m_out;
};

} // namespace tqx
