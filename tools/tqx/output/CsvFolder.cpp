#include "output/CsvFolder.h"

#include "output/CsvBook.h"

namespace tqx::tool
{

CsvFolder::CsvFolder(const std::string& path, const FieldFilter& shown, const CsvStyle& style)
    : m_filter(shown), m_style(style), m_files(path)
{
}

void CsvFolder::put(const BatchText& batch)
{
    size_t start = 0;
    for (const BatchText::Part& part : batch.parts) {
        if (m_filesOfTypes.size() <= part.recordType)
            m_filesOfTypes.resize(part.recordType + 1);
        if (m_filesOfTypes[part.recordType].empty())
            addTables(part.recordType);
        m_files.append(m_filesOfTypes[part.recordType][part.table],
                       batch.text.view().substr(start, part.end - start));
        start = part.end;
    }
}

void CsvFolder::addTables(uint32_t recordType)
{
    const CsvBook book(*m_filter.getSchema().getType(recordType), m_filter, m_style);
    Buffer header;
    for (size_t table = 0; table < book.countTables(); ++table) {
        const size_t file = m_files.add(book.getName(table) + ".csv");
        m_filesOfTypes[recordType].push_back(file);
        header.clear();
        book.appendHeader(header, table);
        m_files.append(file, header.view());
    }
}

} // namespace tqx::tool
