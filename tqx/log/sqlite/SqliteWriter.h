#pragma once

#include "tqx/log/record/DecodedBlock.h"
#include "tqx/log/record/FieldFilter.h"
#include "tqx/log/stream/BlockStream.h"
#include "tqx_log_export.h"

#include <memory>
#include <string>

namespace tqx
{

/// Writes blocks into a new SQLite database, one table per type.
///
/// - A table has the name of its block type, and one row per block: "id", which counts all blocks
/// that were written, "file_id" and "file_offset", where the block was, "WNc" and "TOW",
/// "gnss_time" and
///   "utc_time" as ISO 8601 text, then the fields in the order of the filter.
/// - An array of sub-blocks has a table Block_Field with one row per entry: "id", "parent_id" of
/// the
///   row that it belongs to, "element" from 0 on; below another sub-block also "block_id" of the
///   block's row. Fields that identify what the entry is in come next, then those of the entry.
/// - Values are scaled, named ones are their names, codes without name the text of their number.
///   Absent and unavailable values are NULL, and so is NaN, which SQLite lacks. An unsigned
///   integer of 2^63 or more is a text of its digits. Arrays of numbers are texts in JSON.
/// - "tqx_log", "tqx_files", "tqx_tables" and "tqx_columns" say what was read, and what tables and
///   columns mean, with units and scales. "tqx_other_blocks" has the bytes of blocks without known
///   fields or that do not decode, if the filter shows everything.
///
/// Names are letters, digits and underscores, and differ by more than case. Works in constant
/// memory. Errors throw DataError with the name of the database, among them that this library was
/// built without SQLite; the file is then of no use.
class TQX_LOG_API SqliteWriter
{
public:
    /// Begins a database in the file `path`, which must not exist or must be empty; messages name
    /// it `name`. `isStored` is for values as they are stored, without scale and names. The filter
    /// must outlive the writer.
    SqliteWriter(const std::string& path, const std::string& name, const FieldFilter& filter,
                 bool isStored = false);
    /// Without finish(), what is in the file is of no use.
    ~SqliteWriter();
    SqliteWriter(const SqliteWriter&) = delete;
    SqliteWriter& operator=(const SqliteWriter&) = delete;

    /// Adds a block of the file `file` that decoded; nothing when the filter shows no field of it.
    void write(const DecodedBlock& decoded, const std::string& file);

    /// Adds a block of an unknown number, or one that did not decode.
    void writeOther(const DecodedBlock& decoded, const std::string& file);

    /// Completes the database; `counts` are those of the stream. The last call.
    void finish(const StreamCounts& counts);

private:
    class Core;

    std::unique_ptr<Core> m_core;
};

} // namespace tqx
