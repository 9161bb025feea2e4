#include "output/TableOutput.h"

#include "io/ToolError.h"

#include <CLI/Validators.hpp>

namespace tqx::tool
{

void TableOptions::add(CLI::App& command)
{
    command.add_option("--format", m_format, "Output format")
        ->transform(CLI::IsMember({"csv", "jsonl", "sqlite"}, CLI::ignore_case).description(""))
        ->type_name("csv|jsonl|sqlite")
        ->capture_default_str();
    command
        .add_option("-o,--output", m_target,
                    "File to write instead of standard output; a database needs one")
        ->type_name("FILE");
}

TableOutput::TableOutput(const TableOptions& options, const std::string& command)
{
    const std::string& target = options.getTarget();
    if (options.getFormat() == "sqlite") {
        if (target == "-")
            throw ToolError(command + ": --format sqlite writes a file, name it with -o");
        m_file.emplace(target);
        auto database = std::make_unique<DatabaseTable>(m_file->getPath(), target);
        m_database = database.get();
        m_tables = std::move(database);
        return;
    }
    m_text.emplace(target);
    m_tables = std::make_unique<TextTable>(
        options.getFormat() == "csv" ? RowFormat::Csv : RowFormat::JsonLines, m_text->getBuffer());
}

Sink& TableOutput::getSink()
{
    if (m_text)
        return *m_text;
    return m_noSink;
}

void TableOutput::finish()
{
    if (m_database) {
        m_database->finish();
        m_file->putInPlace();
    } else {
        m_text->flush();
    }
}

} // namespace tqx::tool
