#pragma once

#include "tqx/gnss/table/TableRows.h"
#include "tqx_gnss_export.h"

#include <memory>
#include <string>
#include <vector>

namespace tqx
{

/// Tables of a new SQLite database. Columns have the same names as in text; flags are 0 and 1,
/// missing values are NULL. The table "tqx_columns" has the units of all columns. Errors throw
/// DataError with the name of the database.
class TQX_GNSS_API DatabaseTable : public TableTarget
{
public:
    /// Begins a database in the file `path`, which must not exist or must be empty; messages name
    /// it `name`.
    DatabaseTable(const std::string& path, const std::string& name);
    /// Without finish(), what is in the file is of no use.
    ~DatabaseTable() override;

    std::unique_ptr<TableRows> open(const char* name,
                                    const std::vector<TableColumn>& columns) override;

    /// Completes the database. The last call; no TableRows may be left.
    void finish();

private:
    class Core;

    std::unique_ptr<Core> m_core;
};

} // namespace tqx
