#include "commands/DumpCommand.h"

#include "io/Output.h"
#include "io/ToolError.h"
#include "output/CsvDump.h"
#include "output/ParallelDump.h"
#include "output/SqliteDump.h"
#include "tqx/log/record/FieldFilter.h"
#include "tqx/log/select/RowCondition.h"
#include "tqx/log/write/Paragraph.h"
#include "tqx/log/write/RawJson.h"
#include "tqx/log/write/ValueJson.h"

#include "TQX_Layout.h"

#include <CLI/Validators.hpp>

#include <memory>
#include <optional>

namespace tqx::tool
{

namespace
{

/// Stored values as JSON Lines.
class RawJsonWriter : public BlockWriter
{
public:
    explicit RawJsonWriter(const FieldFilter& filter) : m_json(filter) {}
    void write(Buffer& out, const DecodedBlock& decoded) override { m_json.write(out, decoded); }
    void writeOther(Buffer& out, const DecodedBlock& decoded) override
    {
        m_json.writeBytes(out, decoded.block);
    }

private:
    RawJson m_json;
};

/// Scaled values and names as JSON Lines.
class ValueJsonWriter : public BlockWriter
{
public:
    ValueJsonWriter(const FieldFilter& filter, const ValueStyle& style) : m_json(filter, style) {}
    void write(Buffer& out, const DecodedBlock& decoded) override { m_json.write(out, decoded); }
    void writeOther(Buffer& out, const DecodedBlock& decoded) override
    {
        m_json.writeBytes(out, decoded);
    }

private:
    ValueJson m_json;
};

/// Paragraphs for people.
class TextWriter : public BlockWriter
{
public:
    TextWriter(const FieldFilter& filter, const ValueStyle& style, bool isUtc)
        : m_filter(filter), m_paragraph(filter, style, isUtc)
    {
    }
    void write(Buffer& out, const DecodedBlock& decoded) override
    {
        m_paragraph.write(out, decoded.block, decoded.record);
    }
    void writeOther(Buffer& out, const DecodedBlock& decoded) override
    {
        // CSV has nothing for a block of a known type that did not decode.
        if (!m_filter.getSchema().getBlockType(decoded.block.getNumber()))
            m_paragraph.writeTitle(out, decoded.block);
    }

private:
    const FieldFilter& m_filter;
    Paragraph m_paragraph;
};

} // namespace

DumpCommand::DumpCommand(CLI::App& program)
    : Command(
          program, "dump", "Show decoded messages",
          "  tqx dump log.tqx\n"
          "  tqx dump --type 4007 --field Latitude,Longitude,Height log.tqx\n"
          "  tail -c +1 -f log.tqx | tqx dump --format jsonl - | jq .fields.TOW\n"
          "  tqx dump --format csv --type 4007 log.tqx > position.csv\n"
          "  tqx dump --format csv log.tqx -o tables\n"
          "  tqx dump --format sqlite log.tqx -o log.sqlite\n"
          "  tqx dump --format jsonl --raw log.tqx | tqx encode - -o same.tqx\n"
          "\n"
          "Text is one paragraph per message. Jsonl is one object per line, with scaled values,\n"
          "names for values that have one and null for what is not available; with --raw it has\n"
          "the stored values, from which encode makes the same blocks again. Objects with\n"
          "scaled values have the time of their block, in GPS time and UTC; blocks without\n"
          "known fields have their bytes in base64. Control characters in texts are shown as\n"
          "\\n or \\x1b.\n"
          "\n"
          "Csv is a table. Standard output, or a file named .csv, holds a single selected type,\n"
          "with one row per message or, if it has sub-blocks, per sub-block. A folder gets all\n"
          "types: one file each with one row per message, and one file Block.Field.csv per\n"
          "array of sub-blocks with one row per entry. MessageIndex counts the messages of a\n"
          "type and joins the two. Elements of other arrays share a cell, separated by\n"
          "semicolons. UTC uses the leap seconds known in 2025; what is not available is an\n"
          "empty cell. --rows filters rows: its condition, written like those of --where but\n"
          "without `any`, names fields of the row's message or sub-block and of the enclosing\n"
          "ones, nearest first. A table whose rows have none of the fields keeps only its\n"
          "header.\n"
          "\n"
          "Sqlite is a database with one table per type, which has one row per message, and one\n"
          "table Block_Field per array of sub-blocks with one row per entry, whose parent_id is\n"
          "the id of its parent row. What is not available is NULL, and so is NaN, which SQLite\n"
          "lacks; elements of other arrays share a cell as JSON. Blanks and points in names\n"
          "become underscores. The tables tqx_tables, tqx_columns (with units and scales),\n"
          "tqx_files and tqx_log describe the database; tqx_other_blocks has the bytes of\n"
          "blocks without known fields. The database replaces the file of -o once it is\n"
          "complete.\n"
          "\n" +
              std::string(SelectionOptions::notes))
{
    m_streams.addInputs(m_app);
    m_streams.addDamageReport(m_app);
    m_streams.addSelection(m_app);
    m_app.add_option("--format", m_format, "Output format")
        ->transform(
            CLI::IsMember({"text", "jsonl", "csv", "sqlite"}, CLI::ignore_case).description(""))
        ->type_name("text|jsonl|csv|sqlite")
        ->capture_default_str();
    m_app.add_flag("--raw", m_raw, "Show values as stored, without scale, unit and names");
    m_units.add(m_app, "Write units in text and csv as words (meter) or symbols (m)");
    m_app.add_flag("--degrees", m_degrees,
                   "Show angles in degrees instead of radians; --where and --rows stay in radians");
    m_app.add_flag("--utc", m_utc,
                   "Show the times of blocks in text in UTC; jsonl and csv always have it");
    m_app
        .add_option("--rows", m_rows,
                    "Write only csv rows that meet a condition, such as 'SVID like \"G*\" and "
                    "CN0_dBHz > 45'")
        ->type_name("CONDITION");
    m_app.add_flag("--csv-safe", m_csvSafe,
                   "Put an apostrophe before csv texts that a spreadsheet would take for formulas: "
                   "those that begin with = + - @, a tab or a carriage return");
    m_app
        .add_option("--field", m_fields,
                    "Show only these fields, in this order: Field, Field.Inner or just Inner for a "
                    "field in the sub-blocks of Field, Block.Field for one block only")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->type_name("FIELD,FIELD");
    m_app
        .add_option("-o,--output", m_target,
                    "Write to this file (for csv also a folder) instead of standard output; "
                    "required for sqlite")
        ->type_name("FILE");
}

ExitStatus DumpCommand::run()
{
    const FieldFilter filter(m_fields, m_streams.getSchema());
    m_streams.checkBefore(m_target);
    if (m_csvSafe && m_format != "csv")
        throw ToolError("dump: --csv-safe goes with --format csv");
    if (m_degrees && m_raw)
        throw ToolError("dump: --degrees is for scaled values, --raw shows them as stored");
    if (!m_rows.empty() && m_format != "csv")
        throw ToolError("dump: --rows goes with --format csv; --where selects blocks");
    const ValueStyle style = {m_raw, m_degrees, m_units.areSymbols()};
    if (m_format == "csv") {
        std::optional<RowCondition> condition;
        if (!m_rows.empty())
            condition.emplace(m_rows, m_streams.getSelection().getTypes());
        return dumpCsv(m_streams, filter, {style, m_csvSafe, condition ? &*condition : nullptr},
                       m_target);
    }
    if (m_format == "sqlite") {
        if (m_degrees || m_utc || m_units.areSymbols()) {
            throw ToolError("dump: --units, --degrees and --utc do not go with --format sqlite, "
                            "whose tables have units and UTC");
        }
        return dumpSqlite(m_streams, filter, m_raw, m_target);
    }
    Output output(m_target);
    const auto makeWriter = [&]() -> std::unique_ptr<BlockWriter> {
        if (m_format == "text")
            return std::make_unique<TextWriter>(filter, style, m_utc);
        if (m_raw)
            return std::make_unique<RawJsonWriter>(filter);
        return std::make_unique<ValueJsonWriter>(filter, style);
    };
    OutputTarget text(output);
    ParallelDump dump(text, makeWriter, m_streams.isLive() ? 1 : 0, m_streams.getSchema());
    return m_streams.read(dump, dump);
}

} // namespace tqx::tool
