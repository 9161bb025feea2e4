#pragma once

#include "tqx/log/time/GnssTime.h"
#include "tqx_gnss_export.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace tqx
{

/// A column of a table.
struct TableColumn {
    const char* name;
    const char* unit = ""; ///< of the description of the format
};

/// Rows of a table with fixed columns. The cells of a row are set in the order of the columns,
/// between begin() and end().
class TQX_GNSS_API TableRows
{
public:
    virtual ~TableRows();
    TableRows(const TableRows&) = delete;
    TableRows& operator=(const TableRows&) = delete;

    virtual void begin() = 0;
    virtual void end() = 0;

    virtual void text(std::string_view value) = 0; ///< "" is missing
    virtual void whole(int64_t value) = 0;
    virtual void flag(bool value) = 0;
    virtual void missing() = 0;

    /// A number with `decimals` decimals; NaN is missing.
    virtual void fixed(double value, int decimals) = 0;

    /// A number in full precision; missing if not finite.
    virtual void number(double value) = 0;

    /// The cells of the columns that withTime() adds.
    virtual void time(GnssMillis time) = 0;

    /// The columns with which every table begins, followed by those given.
    static std::vector<TableColumn> withTime(const std::vector<TableColumn>& columns);
    static constexpr size_t timeColumns = 3;

protected:
    TableRows() = default;
};

/// Where tables are written.
class TQX_GNSS_API TableTarget
{
public:
    virtual ~TableTarget();
    TableTarget(const TableTarget&) = delete;
    TableTarget& operator=(const TableTarget&) = delete;

    /// Begins a table. The rows must not outlive the target. Throws DataError when it cannot be
    /// written.
    virtual std::unique_ptr<TableRows> open(const char* name,
                                            const std::vector<TableColumn>& columns) = 0;

protected:
    TableTarget() = default;
};

} // namespace tqx
