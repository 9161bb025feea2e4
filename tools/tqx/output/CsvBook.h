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

/// The messages of one type as tables, each for a file of its own: <Block> has a row a message, and
/// each array of sub-blocks a table <Block>.<Field> with a row an entry. Rows begin with the
/// message's index and time and, in tables of sub-blocks, the index of the entry in its array,
/// after those of the arrays around it.
class CsvBook
{
public:
    /// See CsvTable.
    CsvBook(const Kor::MessageApi::TQX_TypeLayout& type, const FieldFilter& shown,
            const CsvStyle& style);

    size_t countTables() const { return m_sheets.size(); }

    /// What a table is named. Tables have numbers from 0 on.
    const std::string& getName(size_t table) const { return m_sheets[table].name; }

    /// Appends the line with the names of a table's columns.
    void appendHeader(Buffer& out, size_t table) const;

    /// Appends the rows of a record of the type, the `index`-th of the stream, from 0: a part for
    /// each table, also for one that the record has no rows for. Books of a stream may share the
    /// key columns.
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
    Buffer m_start; ///< the cells that rows begin with
};

} // namespace tqx::tool
