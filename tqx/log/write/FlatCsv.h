#pragma once

#include "tqx/log/write/CsvKey.h"
#include "tqx/log/write/CsvTable.h"
#include "tqx_log_export.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace tqx
{

/// The messages of one type as one table. A message with sub-blocks has one row per sub-block,
/// which repeats the fields of its parents; columns of other sub-blocks are empty.
///
/// Used by one thread at a time. Throws std::bad_alloc when there is no memory to append to.
class TQX_LOG_API FlatCsv
{
public:
    /// See CsvTable.
    FlatCsv(const Kor::MessageApi::TQX_TypeLayout& type, const FieldFilter& shown,
            const CsvStyle& style);

    /// Appends the line with the names of the columns.
    void writeHeader(Buffer& out) const;

    /// Appends the rows of a record of the type, the `index`-th of the stream, from 0.
    void write(Buffer& out, const void* record, uint64_t index);

private:
    void writeColumns(Buffer& out, const CsvTable& table, const std::string& path) const;
    void writeRows(Buffer& out, const CsvTable& table, const void* record, size_t cellsAfter);

    ValueStyle m_style;
    CsvTable m_top;
    size_t m_cellsOfChildren;
    CsvKey m_key;
    Buffer m_row;
};

} // namespace tqx
