#include "output/CsvFolder.h"

#include "tqx/log/text/CsvText.h"
#include "tqx/log/text/NumberText.h"
#include "tqx/log/write/CsvKey.h"

#include "TQX_RecordAccess.h"

namespace tqx::tool
{

using namespace Kor::MessageApi;

/// A table in its file, and those of the arrays in it.
struct CsvFolder::Sheet {
    CsvTable* table;
    bool hasFile;
    size_t file;
    std::vector<Sheet> children;
};

/// What there is of one type.
struct CsvFolder::Book {
    CsvTable table;
    Sheet sheet;
    uint64_t messages;
};

CsvFolder::CsvFolder(CsvFiles& target, const FieldFilter& shown, const CsvStyle& wanted)
    : m_files(target), m_filter(shown), m_style(wanted)
{
}

CsvFolder::~CsvFolder() = default;

std::unique_ptr<CsvFolder::Book> CsvFolder::open(const TQX_TypeLayout& type)
{
    std::unique_ptr<Book> book(new Book{{type, m_filter, m_style}, {}, 0});
    book->sheet = addSheet(book->table, type.name, "");
    return book;
}

CsvFolder::Sheet CsvFolder::addSheet(CsvTable& table, const std::string& name,
                                     const std::string& indexes)
{
    Sheet sheet = {&table, table.hasRows(), 0, {}};
    if (sheet.hasFile) {
        sheet.file = m_files.add(name + ".csv");
        Buffer& out = m_files.getBuffer(sheet.file);
        csv::appendKeyColumns(out);
        out.append(indexes);
        for (const std::string& column : table.getColumns()) {
            out.append(',');
            out.append(csv::cell(column));
        }
        out.append('\n');
    }
    for (const CsvTable::Child& child : table.getChildren()) {
        sheet.children.push_back(
            addSheet(*child.table, name + '.' + child.field->name,
                     indexes + ',' + csv::cell(std::string(child.field->name) + " index")));
    }
    return sheet;
}

void CsvFolder::write(const void* record)
{
    const uint32_t recordType = static_cast<const KorcgHeader_s*>(record)->korcg_type;
    const TQX_TypeLayout& type = *TQX_layout(recordType);
    if (!type.hasMessage)
        return;
    if (m_books.size() <= recordType)
        m_books.resize(recordType + 1);
    std::unique_ptr<Book>& book = m_books[recordType];
    if (!book)
        book = open(type);
    m_key.clear();
    csv::appendKey(m_key, book->messages++, record);
    writeRows(book->sheet, record);
}

/// `key` holds the cells that the row of the record begins with.
void CsvFolder::writeRows(Sheet& sheet, const void* record)
{
    if (sheet.hasFile) {
        Buffer& out = m_files.getBuffer(sheet.file);
        out.append(m_key.view());
        sheet.table->appendCells(out, record);
        out.append('\n');
        m_files.commit(sheet.file);
    }
    const size_t start = m_key.size();
    for (size_t c = 0; c < sheet.children.size(); ++c) {
        const CsvTable::Child& child = sheet.table->getChildren()[c];
        const uint32_t count = sheet.table->countEntries(child, record);
        for (uint32_t i = 0; i < count; ++i) {
            m_key.append(',');
            number::appendUnsigned(m_key, i);
            writeRows(sheet.children[c], CsvTable::entry(child, record, i));
            m_key.truncate(start);
        }
    }
}

} // namespace tqx::tool
