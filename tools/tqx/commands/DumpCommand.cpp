#include "DumpCommand.h"

#include "FieldFilter.h"
#include "MessageDecoder.h"
#include "Output.h"
#include "Paragraph.h"
#include "RawJson.h"
#include "RecordDecoder.h"
#include "ValueJson.h"

#include <CLI/Validators.hpp>

#include <map>

namespace tool
{

namespace
{

constexpr int32_t unknownNumber = -6072;

/// Stored values as JSON Lines, straight from the records.
class RawJsonDump : public BlockConsumer
{
public:
    RawJsonDump(const FieldFilter& filter, Buffer& buffer) : json(filter), out(buffer) {}

    void begin(BlockStream&) override { decoder = std::make_unique<RecordDecoder>(); }

    void take(BlockStream& stream, const Block& block) override
    {
        const int32_t result = decoder->decode(block);
        if (result > 0)
            return json.write(out, block, *decoder);
        if (result != unknownNumber)
            stream.reportUndecodable(block, result);
        json.writeBytes(out, block);
    }

    void end(BlockStream&) override {}

private:
    std::unique_ptr<RecordDecoder> decoder;
    RawJson json;
    Buffer& out;
};

/// Scaled values and names as JSON Lines, straight from the records.
class ValueJsonDump : public BlockConsumer
{
public:
    ValueJsonDump(const FieldFilter& filter, Buffer& buffer) : json(filter), out(buffer) {}

    void begin(BlockStream&) override { decoder = std::make_unique<RecordDecoder>(); }

    void take(BlockStream& stream, const Block& block) override
    {
        const int32_t result = decoder->decode(block);
        if (result > 0)
            json.write(out, decoder->getRecord());
        else if (result != unknownNumber)
            stream.reportUndecodable(block, result);
    }

    void end(BlockStream&) override {}

private:
    std::unique_ptr<RecordDecoder> decoder;
    ValueJson json;
    Buffer& out;
};

/// Whatever is written of messages.
class MessageDump : public BlockConsumer
{
public:
    void begin(BlockStream&) override { decoder = std::make_unique<MessageDecoder>(); }

    void take(BlockStream& stream, const Block& block) override
    {
        const int32_t result = decoder->decode(block);
        if (decoder->getMessage())
            writeMessage(block, *decoder->getMessage());
        else if (result < 0 && result != unknownNumber)
            stream.reportUndecodable(block, result);
        else
            writeOther(block);
    }

    void end(BlockStream&) override {}

protected:
    virtual void writeMessage(const Block& block, const Message& message) = 0;
    /// A block of an unknown number or of a type without message class.
    virtual void writeOther(const Block& block) = 0;

private:
    std::unique_ptr<MessageDecoder> decoder;
};

class TextDump : public MessageDump
{
public:
    TextDump(const FieldFilter& filter, Paragraph::Values values, Buffer& buffer)
        : paragraph(filter, values), out(buffer)
    {
    }

private:
    void writeMessage(const Block& block, const Message& message) override
    {
        paragraph.write(out, block, message);
    }
    void writeOther(const Block& block) override { paragraph.writeTitle(out, block); }

    Paragraph paragraph;
    Buffer& out;
};

} // namespace

DumpCommand::DumpCommand(CLI::App& program)
    : Command(
          program, "dump", "Show decoded messages",
          "  tqx dump log.tqx\n"
          "  tqx dump --type 4007 --field Latitude,Longitude,Height log.tqx\n"
          "  receiver | tqx dump --format jsonl - | jq .fields.TOW\n"
          "  tqx dump --format jsonl --raw log.tqx | tqx encode - -o same.tqx\n"
          "\n"
          "Text is a paragraph a message; jsonl is an object a line, with scaled values, names\n"
          "for values that have one and null for what is not available, or under --raw with the\n"
          "stored values, from which encode makes the same blocks again.\n"
          "\n" +
              std::string(SelectionOptions::notes))
{
    streams.addInputs(app);
    streams.addSelection(app);
    const std::map<std::string, Format> formats = {{"text", Format::Text},
                                                   {"jsonl", Format::JsonLines}};
    app.add_option("--format", format, "How to write them: text or jsonl")
        ->transform(CLI::CheckedTransformer(formats).description(""))
        ->type_name("FORMAT")
        ->default_str("text");
    app.add_flag("--raw", raw, "Values as they are stored, without scale, unit and names");
    app.add_option("--field", fields,
                   "Only these fields; Field.Inner for one inside the sub-blocks of Field")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->type_name("FIELD,FIELD");
    app.add_option("-o,--output", target, "File to write instead of standard output")
        ->type_name("FILE");
}

ExitStatus DumpCommand::run()
{
    const FieldFilter filter(fields);
    streams.keepInputsFrom(target);
    Output output(target);
    Buffer& out = output.getBuffer();
    std::unique_ptr<BlockConsumer> dump;
    if (format == Format::Text)
        dump = std::make_unique<TextDump>(
            filter, raw ? Paragraph::Values::Stored : Paragraph::Values::Scaled, out);
    else if (raw)
        dump = std::make_unique<RawJsonDump>(filter, out);
    else
        dump = std::make_unique<ValueJsonDump>(filter, out);
    return streams.read(*dump, output);
}

} // namespace tool
