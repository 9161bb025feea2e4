#include "InfoCommand.h"

#include "Output.h"
#include "StreamSummary.h"
#include "SummaryText.h"

#include <memory>

namespace tool
{

namespace
{

class Summaries : public BlockConsumer
{
public:
    Summaries(Buffer& buffer, bool asJson) : out(buffer), json(asJson) {}

    void begin(BlockStream&) override { summary = std::make_unique<StreamSummary>(); }
    void take(BlockStream& stream, const Block& block) override { summary->add(stream, block); }
    void end(BlockStream& stream) override
    {
        if (json)
            return appendSummaryJson(out, stream.getName(), stream.getCounts(), *summary);
        if (!first)
            out.append('\n');
        first = false;
        appendSummaryText(out, stream.getName(), stream.getCounts(), *summary);
    }

private:
    Buffer& out;
    bool json;
    bool first = true;
    std::unique_ptr<StreamSummary> summary;
};

} // namespace

InfoCommand::InfoCommand(CLI::App& program)
    : Command(program, "info", "Show what a stream holds: types, times, rates, damage",
              "  tqx info log.tqx\n"
              "  tqx info --json --quiet *.tqx | jq .crcErrors\n")
{
    streams.addInputs(app);
    streams.addSelection(app);
    app.add_flag("--json", json, "An object a line for each file instead of text");
}

ExitStatus InfoCommand::run()
{
    Output output;
    Summaries summaries(output.getBuffer(), json);
    return streams.read(summaries, output);
}

} // namespace tool
