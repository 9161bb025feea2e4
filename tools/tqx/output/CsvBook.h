#pragma once

#include "output/BatchText.h"
#include "tqx/log/write/CsvKey.h"
#include "tqx/log/write/CsvTable.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tqx::tool
{

/// The messages of one type as tables, each for its own file: <Block> has one row per message, and
/// each array of sub-blocks has a table <Block>.<Field> with one row per entry. Rows begin with the
/// message's index and time and, in tables of sub-blocks, the index of the entry in its array,
/// after those of the enclosing arrays.
class CsvBook
{
public:
    /// See CsvTable.
    CsvBook(const Kor::MessageApi::TQX_TypeLayout& type, const FieldFilter& shown,
            const CsvStyle& style);

    size_t countTables() const { return m_sheets.size(); }

    /// The name of a table. Tables are numbered from 0.
    const std::string& getName(size_t table) const { return m_sheets[table].name; }

    /// Appends the line with the names of a table's columns.
    void appendHeader(Buffer& out, size_t table) const;

    /// Appends the rows of a record of the type, the `index`-th of the stream, from 0: one part per
    /// table, even if the record has no rows for it. Books of a stream may share the key columns.
    void write(BatchText& out, CsvKey& key, const void* record, uint64_t index);

private:
    /// One of the tables, and the arrays that lead to its records.
    struct Sheet {
        CsvTable* table;
        std::string name;
        std::vector<const CsvTable::Child*> path;
    };

    void addSheets(CsvTable& table, const std::string& name,
                   std::vector<const CsvTable::Child*> path);
    void writeRows(Buffer& out, const Sheet& sheet, size_t depth, const void* record);

    uint32_t m_recordType;
    ValueStyle m_style;
    CsvTable m_table;
    std::vector<Sheet> m_sheets;
    Buffer m_start; ///< the first cells of rows
};

} // namespace tqx::tool
