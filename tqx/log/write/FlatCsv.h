#pragma once

#include "tqx/log/write/CsvTable.h"
#include "tqx_log_export.h"

#include <cstdint>

namespace tqx
{

/// The messages of one type as one table. A message with sub-blocks has a row for each of them, in
/// which what stands above the sub-block is repeated; columns of other sub-blocks are empty.
class TQX_LOG_API FlatCsv
{
public:
    /// See CsvTable.
    FlatCsv(const Kor::MessageApi::TQX_TypeLayout& type, const FieldFilter& shown,
            const CsvStyle& style);

    /// Appends the line with the names of the columns.
    void writeHeader(Buffer& out) const;

    /// Appends the rows of a record of the type.
    void write(Buffer& out, const void* record);

private:
    void writeColumns(Buffer& out, const CsvTable& table, const std::string& path) const;
    void writeRows(Buffer& out, CsvTable& table, const void* record, size_t cellsBehind);

    CsvTable m_top;
    Buffer m_row;
    uint64_t m_messages = 0;
};

} // namespace tqx
