#include "tqx/log/write/FlatCsv.h"

#include "tqx/log/text/CsvText.h"
#include "tqx/log/text/NumberText.h"
#include "tqx/log/write/CsvKey.h"

namespace tqx
{

namespace
{

void appendCommas(Buffer& out, size_t count)
{
    for (; count != 0; --count)
        out.append(',');
}

/// Cells of a child's rows: its index, its own and those of the children below it.
size_t widthOf(const CsvTable& table)
{
    size_t width = 1 + table.getColumns().size();
    for (const CsvTable::Child& child : table.getChildren())
        width += widthOf(*child.table);
    return width;
}

} // namespace

FlatCsv::FlatCsv(const Kor::MessageApi::TQX_TypeLayout& type, const FieldFilter& shown,
                 const CsvStyle& style)
    : m_top(type, shown, style)
{
}

void FlatCsv::writeHeader(Buffer& out) const
{
    csv::appendKeyColumns(out);
    writeColumns(out, m_top, "");
    out.append('\n');
}

void FlatCsv::writeColumns(Buffer& out, const CsvTable& table, const std::string& path) const
{
    for (const std::string& column : table.getColumns()) {
        out.append(',');
        out.append(csv::cell(path + column));
    }
    for (const CsvTable::Child& child : table.getChildren()) {
        const std::string name = path + child.field->name;
        out.append(',');
        out.append(csv::cell(name + " index"));
        writeColumns(out, *child.table, name + '.');
    }
}

void FlatCsv::write(Buffer& out, const void* record)
{
    m_row.clear();
    csv::appendKey(m_row, m_messages++, record);
    m_top.appendCells(m_row, record);
    size_t behind = 0;
    for (const CsvTable::Child& child : m_top.getChildren())
        behind += widthOf(*child.table);
    writeRows(out, m_top, record, behind);
}

/// `row` holds the cells in front of the children's; `cellsBehind` are those of the children and of
/// whatever comes behind them.
void FlatCsv::writeRows(Buffer& out, CsvTable& table, const void* record, size_t cellsBehind)
{
    const size_t start = m_row.size();
    size_t left = cellsBehind;
    bool hasEntries = false;
    for (const CsvTable::Child& child : table.getChildren()) {
        const uint32_t count = table.countEntries(child, record);
        const size_t width = widthOf(*child.table);
        for (uint32_t i = 0; i < count; ++i) {
            hasEntries = true;
            const void* entry = CsvTable::entry(child, record, i);
            m_row.append(',');
            number::appendUnsigned(m_row, i);
            child.table->appendCells(m_row, entry);
            writeRows(out, *child.table, entry, left - 1 - child.table->getColumns().size());
            m_row.truncate(start + (cellsBehind - left));
        }
        appendCommas(m_row, width);
        left -= width;
    }
    m_row.truncate(start);
    if (hasEntries || !table.hasRows())
        return;
    out.append(m_row.view());
    appendCommas(out, cellsBehind);
    out.append('\n');
}

} // namespace tqx
