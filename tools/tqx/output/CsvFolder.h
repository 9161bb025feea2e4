#pragma once

#include "output/CsvFiles.h"
#include "tqx/log/write/CsvTable.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace tqx::tool
{

/// The messages of all types as tables in files: <Block>.csv has a row a message, and each array of
/// sub-blocks a file <Block>.<Field>.csv of its own with a row an entry. Rows begin with the
/// message's index and time and, in files of sub-blocks, the index of the entry in its array, after
/// those of the arrays around it.
class CsvFolder
{
public:
    /// See CsvTable.
    CsvFolder(CsvFiles& files, const FieldFilter& shown, const CsvStyle& style);
    ~CsvFolder();
    CsvFolder(const CsvFolder&) = delete;
    CsvFolder& operator=(const CsvFolder&) = delete;

    /// Writes the rows of a record of a main block. A type without message class has none.
    void write(const void* record);

private:
    struct Sheet;
    struct Book;

    std::unique_ptr<Book> open(const Kor::MessageApi::TQX_TypeLayout& type);
    Sheet addSheet(CsvTable& table, const std::string& name, const std::string& indexes);
    void writeRows(Sheet& sheet, const void* record);

    CsvFiles& m_files;
    const FieldFilter& m_filter;
    CsvStyle m_style;
    std::vector<std::unique_ptr<Book>> m_books; ///< by record type
    Buffer m_key;
};

} // namespace tqx::tool
