#include "output/CsvBook.h"

#include "tqx/log/text/CsvText.h"
#include "tqx/log/text/NumberText.h"

#include <utility>

namespace tqx::tool
{

CsvBook::CsvBook(const Kor::MessageApi::TQX_TypeLayout& type, const FieldFilter& shown,
                 const CsvStyle& style)
    : m_recordType(type.recordType), m_style(style.values), m_table(type, shown, style)
{
    addSheets(m_table, type.name, {});
}

void CsvBook::addSheets(CsvTable& table, const std::string& name,
                        std::vector<const CsvTable::Child*> path)
{
    if (table.hasRows())
        m_sheets.push_back({&table, name, path});
    path.push_back(nullptr);
    for (const CsvTable::Child& child : table.getChildren()) {
        path.back() = &child;
        addSheets(*child.table, name + '.' + child.member.getField().name, path);
    }
}

void CsvBook::appendHeader(Buffer& out, size_t table) const
{
    const Sheet& sheet = m_sheets[table];
    CsvKey::appendColumns(out, m_style);
    for (const CsvTable::Child* child : sheet.path) {
        out.append(',');
        out.append(csv::cell(std::string(child->member.getField().name) + " index"));
    }
    for (const std::string& column : sheet.table->getColumns()) {
        out.append(',');
        out.append(csv::cell(column));
    }
    out.append('\n');
}

void CsvBook::write(BatchText& out, CsvKey& key, const void* record, uint64_t index)
{
    m_start.clear();
    key.append(m_start, index, record);
    // Table by table, so that each has its rows together.
    for (size_t table = 0; table < m_sheets.size(); ++table) {
        writeRows(out.text, m_sheets[table], 0, record);
        out.endPart(m_recordType, static_cast<uint32_t>(table));
    }
}

void CsvBook::writeRows(Buffer& out, const Sheet& sheet, size_t depth, const void* record)
{
    if (depth == sheet.path.size()) {
        if (!sheet.table->accepts(record))
            return;
        m_start.reserve(Buffer::chunk);
        out.appendPadded(m_start.data(), m_start.size());
        sheet.table->appendCells(out, record);
        return out.append('\n');
    }
    const CsvTable::Child& child = *sheet.path[depth];
    const uint32_t count = CsvTable::countEntries(child, record);
    if (count == 0)
        return;
    const size_t start = m_start.size();
    const char* entry = child.member.getElements(record);
    for (uint32_t i = 0; i < count; ++i, entry += child.member.getStride()) {
        m_start.append(',');
        number::appendUnsigned(m_start, i);
        writeRows(out, sheet, depth + 1, entry);
        m_start.truncate(start);
    }
}

} // namespace tqx::tool
