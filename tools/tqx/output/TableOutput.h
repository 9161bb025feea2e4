#pragma once

#include "io/NewFile.h"
#include "io/Output.h"
#include "tqx/gnss/table/DatabaseTable.h"
#include "tqx/gnss/table/TextTable.h"

#include <CLI/App.hpp>

#include <memory>
#include <optional>
#include <string>

namespace tqx::tool
{

/// --format and --output of commands that write tables.
class TableOptions
{
public:
    void add(CLI::App& command);

    const std::string& getFormat() const { return m_format; }
    const std::string& getTarget() const { return m_target; }

private:
    std::string m_format = "csv";
    std::string m_target = "-";
};

/// A file or standard output with tables in the requested format.
class TableOutput
{
public:
    /// Throws ToolError when it cannot be created, or a database has no name; `command` is named in
    /// the message.
    TableOutput(const TableOptions& options, const std::string& command);

    TableTarget& getTables() { return *m_tables; }
    Sink& getSink();

    /// Writes the rest. No TableRows may be left.
    void finish();

private:
    std::optional<Output> m_text;
    std::optional<NewFile> m_file;
    NoSink m_noSink;
    std::unique_ptr<TableTarget> m_tables;
    DatabaseTable* m_database = nullptr; ///< m_tables if it is one
};

} // namespace tqx::tool
