#pragma once

#include "TQX_Layout.h"
#include "tqx/log/table/ArrowInterface.h"
#include "tqx/log/table/TableOptions.h"
#include "tqx_log_export.h"

#include <memory>
#include <string>
#include <vector>

namespace tqx
{

struct TablePlan;

/// The columns of a table of the blocks of one type. In this order:
///
/// - "time": of the header, a timestamp in nanoseconds without zone; its metadata say that it is in
///   GPS time ("time_scale"). "utc", if wanted, is the same in UTC. Null where the header has no
///   time, and from the year 2262 on, which nanoseconds cannot say.
/// - "offset" (uint64) and "file" (utf8), if wanted.
/// - With a row for each sub-block: the identifying fields of the records that it is in, named by
///   their path ("Type1.SVID"), from the main block on.
/// - The fields, in the order of the layout, under their display names. Integers and floats are
///   typed as on the wire, or float64 where a scale factor was applied; codes with names are
///   dictionaries of all texts that can occur, which hold the digits of codes without name; texts
///   are utf8; repeated numbers are lists, of a fixed size where that is fixed; sub-blocks are
///   structs or lists of structs. Fields that a block does not have are null, and so are values
///   that are not available; NaN is a number.
///
/// Metadata of columns: "unit", "scale" (of columns that are not scaled), "description". Metadata
/// of the table: "block", "number", "description".
///
/// Immutable, so that any number of threads may fill tables of one schema.
class TQX_LOG_API TableSchema
{
public:
    /// Throws DataError when the type is not a main block, when `options.rows` is not a path of
    /// sub-blocks, when no field is chosen or when a batch would have no room.
    TableSchema(const Kor::MessageApi::TQX_TypeLayout& type, TableOptions options);
    ~TableSchema();
    TableSchema(const TableSchema&) = delete;
    TableSchema& operator=(const TableSchema&) = delete;

    const Kor::MessageApi::TQX_TypeLayout& getType() const { return m_type; }
    const TableOptions& getOptions() const { return m_options; }

    /// Names of the columns, in order.
    std::vector<std::string> getNames() const;

    /// Describes the table as a struct of its columns. What `out` held is forgotten, not released;
    /// the caller releases what it gets. Throws std::bad_alloc, and leaves `out` as it was.
    void exportTo(ArrowSchema& out) const;

    /// For the builders of tables.
    const TablePlan& getPlan() const { return *m_plan; }

private:
    const Kor::MessageApi::TQX_TypeLayout& m_type;
    TableOptions m_options;
    std::unique_ptr<const TablePlan> m_plan;
};

} // namespace tqx
