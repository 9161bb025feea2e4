#pragma once

#include "output/BatchTarget.h"
#include "output/CsvFiles.h"
#include "tqx/log/write/CsvTable.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tqx::tool
{

/// Files for the tables of all types, <Block>.csv and <Block>.<Field>.csv in a folder, made when a
/// type first occurs. See CsvBook.
class CsvFolder final : public BatchTarget
{
public:
    /// Creates the folder if it does not exist; the filter must outlive this object. Throws
    /// ToolError.
    CsvFolder(const std::string& path, const FieldFilter& shown, const CsvStyle& style);

    void put(const BatchText& text) override;
    void flush() override { m_files.flush(); }

    /// Completes the files. Throws ToolError when one cannot be written.
    void close() { m_files.close(); }

private:
    void addTables(uint32_t recordType);

    const FieldFilter& m_filter;
    CsvStyle m_style;
    CsvFiles m_files;
    std::vector<std::vector<size_t>> m_filesOfTypes; ///< by record type and table
};

} // namespace tqx::tool
