#include "tqx/log/write/FlatCsv.h"

#include "tqx/log/text/CsvText.h"
#include "tqx/log/text/NumberText.h"

namespace tqx
{

namespace
{

void appendCommas(Buffer& out, size_t count)
{
    for (; count != 0; --count)
        out.append(',');
}

size_t widthOf(const CsvTable& table);

size_t widthOfChildren(const CsvTable& table)
{
    size_t width = 0;
    for (const CsvTable::Child& child : table.getChildren())
        width += widthOf(*child.table);
    return width;
}

/// Cells of a child's rows: its index, its own and those of the children below it.
size_t widthOf(const CsvTable& table)
{
    return 1 + table.getColumns().size() + widthOfChildren(table);
}

} // namespace

FlatCsv::FlatCsv(const Kor::MessageApi::TQX_TypeLayout& type, const FieldFilter& shown,
                 const CsvStyle& style)
    : m_style(style.values), m_top(type, shown, style), m_cellsOfChildren(widthOfChildren(m_top))
{
}

void FlatCsv::writeHeader(Buffer& out) const
{
    CsvKey::appendColumns(out, m_style);
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
        const std::string name = path + child.member.getField().name;
        out.append(',');
        out.append(csv::cell(name + " index"));
        writeColumns(out, *child.table, name + '.');
    }
}

void FlatCsv::write(Buffer& out, const void* record, uint64_t index)
{
    m_row.clear();
    m_key.append(m_row, index, record);
    m_top.appendCells(m_row, record);
    writeRows(out, m_top, record, m_cellsOfChildren);
}

/// `m_row` holds the cells before those of the children; `cellsAfter` counts those of the children
/// and of whatever comes after them.
void FlatCsv::writeRows(Buffer& out, const CsvTable& table, const void* record, size_t cellsAfter)
{
    const size_t start = m_row.size();
    size_t left = cellsAfter;
    bool hasEntries = false;
    for (const CsvTable::Child& child : table.getChildren()) {
        const uint32_t count = CsvTable::countEntries(child, record);
        const size_t width = widthOf(*child.table);
        const char* entry = count == 0 ? nullptr : child.member.getElements(record);
        for (uint32_t i = 0; i < count; ++i, entry += child.member.getStride()) {
            hasEntries = true;
            m_row.append(',');
            number::appendUnsigned(m_row, i);
            child.table->appendCells(m_row, entry);
            writeRows(out, *child.table, entry, left - 1 - child.table->getColumns().size());
            m_row.truncate(start + (cellsAfter - left));
        }
        appendCommas(m_row, width);
        left -= width;
    }
    m_row.truncate(start);
    if (hasEntries || !table.hasRows() || !table.accepts(record))
        return;
    m_row.reserve(Buffer::chunk);
    out.appendPadded(m_row.data(), m_row.size());
    appendCommas(out, cellsAfter);
    out.append('\n');
}

} // namespace tqx
