#include "commands/InfoCommand.h"

#include "io/Output.h"
#include "io/Words.h"
#include "output/SummaryText.h"
#include "tqx/log/summary/StreamSummary.h"

namespace tqx::tool
{

namespace
{

class Summarizer : public BlockConsumer
{
public:
    Summarizer(Buffer& buffer, bool asJson) : out(buffer), json(asJson) {}

    void begin(InputStream& stream) override
    {
        stream.setGapListener([this](const StreamGap& gap) { summary.addDamage(gap); });
        stream.setNeighbourListener(
            [this](const Neighbour& neighbour) { summary.addNeighbour(neighbour); });
    }
    void take(BlockStream& stream, const Block& block) override { summary.add(stream, block); }
    void end(InputStream& stream) override
    {
        if (stream.hasFailed() && stream.getCounts().bytes == 0)
            return;
        if (stream.getCounts().blocks == 0 && stream.getCounts().bytes != 0 && !stream.isQuiet())
            words::say(headOf(stream.getNames()) + ": holds no TQX blocks");
        if (json)
            appendSummaryJson(out, stream, summary);
        else
            appendSummaryText(out, stream, summary);
    }

private:
    Buffer& out;
    bool json;
    StreamSummary summary;
};

} // namespace

InfoCommand::InfoCommand(CLI::App& program)
    : Command(
          program, "info", "Show what a stream holds: types, times, rates, damage",
          "  tqx info log.tqx\n"
          "  tqx info day1.tqx day2.tqx\n"
          "  tqx info --json *.tqx | jq .crcErrors\n"
          "\n"
          "Several files are summed up as one stream. The text shows the first ten places of\n"
          "damage, JSON the first thousand. A gap is an interval of at least one and a half\n"
          "times the one at which a type usually comes. NMEA sentences, RTCM 3 frames and text\n"
          "between the blocks are counted apart and are no damage.\n")
{
    streams.addInputs(app);
    streams.addSelection(app);
    app.add_flag("--json", json, "A JSON object instead of text");
}

ExitStatus InfoCommand::run()
{
    Output output;
    Summarizer summarizer(output.getBuffer(), json);
    return streams.read(summarizer, output);
}

} // namespace tqx::tool
