#include "commands/DumpCommand.h"

#include "io/Output.h"
#include "io/ToolError.h"
#include "output/CsvDump.h"
#include "output/ParallelDump.h"
#include "tqx/log/record/FieldFilter.h"
#include "tqx/log/write/Paragraph.h"
#include "tqx/log/write/RawJson.h"
#include "tqx/log/write/ValueJson.h"

#include "TQX_Layout.h"

#include <CLI/Validators.hpp>

#include <memory>

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
    explicit ValueJsonWriter(const FieldFilter& filter) : m_json(filter) {}
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
    TextWriter(const FieldFilter& filter, bool raw)
        : m_paragraph(filter, raw ? Paragraph::Values::Stored : Paragraph::Values::Scaled)
    {
    }
    void write(Buffer& out, const DecodedBlock& decoded) override
    {
        m_paragraph.write(out, decoded.block, decoded.record);
    }
    void writeOther(Buffer& out, const DecodedBlock& decoded) override
    {
        // Nothing stands for a block of a known type that did not decode.
        if (TQX_recordType(decoded.block.getNumber()) == 0)
            m_paragraph.writeTitle(out, decoded.block);
    }

private:
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
          "  tqx dump --format jsonl --raw log.tqx | tqx encode - -o same.tqx\n"
          "\n"
          "Text is a paragraph a message; jsonl is an object a line, with scaled values, names\n"
          "for values that have one and null for what is not available, or under --raw with the\n"
          "stored values, from which encode makes the same blocks again. With scaled values each "
          "object\n"
          "says the time of its block, on the GPS scale and in UTC; a block without fields that "
          "are\n"
          "known has its bytes in base64. Control characters in texts are shown as \\n or \\x1b.\n"
          "\n"
          "Csv is a table of a type: to standard output or a file named .csv the one type that is\n"
          "selected, a row for each of its messages or, if it has sub-blocks, for each of those; "
          "to a\n"
          "folder all types, a file each with a row a message, and a file Block.Field.csv for "
          "each\n"
          "array of sub-blocks with a row an entry. MessageIndex counts the messages of a type "
          "and\n"
          "joins the two. Elements of other arrays share a cell, parted by semicolons. UTC is from "
          "the\n"
          "leap seconds known in 2025; what is not available is an empty cell.\n"
          "\n" +
              std::string(SelectionOptions::notes))
{
    m_streams.addInputs(m_app);
    m_streams.addDamageReport(m_app);
    m_streams.addSelection(m_app);
    m_app.add_option("--format", m_format, "How to write them")
        ->transform(CLI::IsMember({"text", "jsonl", "csv"}, CLI::ignore_case).description(""))
        ->type_name("text|jsonl|csv")
        ->capture_default_str();
    m_app.add_flag("--raw", m_raw, "Values as they are stored, without scale, unit and names");
    m_app.add_flag("--csv-safe", m_csvSafe,
                   "Put an apostrophe in front of csv texts that a spreadsheet would take for "
                   "formulas: those that begin with = + - @, a tab or a carriage return");
    m_app
        .add_option(
            "--field", m_fields,
            "Only these fields, in this order; Field.Inner or just Inner for one inside the "
            "sub-blocks of Field, Block.Field for one of that block alone")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->type_name("FIELD,FIELD");
    m_app
        .add_option("-o,--output", m_target,
                    "File to write instead of standard output; for csv a folder, too")
        ->type_name("FILE");
}

ExitStatus DumpCommand::run()
{
    const FieldFilter filter(m_fields);
    m_streams.checkBefore(m_target);
    if (m_csvSafe && m_format != "csv")
        throw ToolError("dump: --csv-safe goes with --format csv");
    if (m_format == "csv")
        return dumpCsv(m_streams, filter, {m_raw, m_csvSafe}, m_target);
    Output output(m_target);
    const auto makeWriter = [&]() -> std::unique_ptr<BlockWriter> {
        if (m_format == "text")
            return std::make_unique<TextWriter>(filter, m_raw);
        if (m_raw)
            return std::make_unique<RawJsonWriter>(filter);
        return std::make_unique<ValueJsonWriter>(filter);
    };
    ParallelDump dump(output, makeWriter, m_streams.isLive() ? 1 : 0);
    return m_streams.read(dump, dump);
}

} // namespace tqx::tool
