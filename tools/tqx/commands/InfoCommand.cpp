#include "commands/InfoCommand.h"

#include "io/Output.h"
#include "output/SummaryText.h"
#include "tqx/log/summary/StreamSummary.h"

namespace tqx::tool
{

namespace
{

class Summarizer : public BlockConsumer
{
public:
    Summarizer(Buffer& buffer, bool asJson, bool isLimited)
        : m_out(buffer), m_json(asJson), m_isLimited(isLimited)
    {
    }

    void begin(InputStream& stream) override
    {
        stream.setGapListener([this](const StreamGap& gap) { m_summary.addDamage(gap); });
        stream.setNeighbourListener(
            [this](const Neighbour& neighbour) { m_summary.addNeighbour(neighbour); });
    }
    void take(BlockStream& stream, const Block& block) override { m_summary.add(stream, block); }
    // What is shown of a whole stream is counted up to where it is read.
    bool canSkip() const override { return !m_isLimited; }
    void end(InputStream& stream) override
    {
        if (stream.hasFailed() && stream.getCounts().bytes == 0)
            return;
        if (m_json) {
            appendSummaryJson(m_out, stream, m_summary);
        } else {
            appendSummaryText(m_out, stream, m_summary);
        }
    }

private:
    Buffer& m_out;
    bool m_json;
    bool m_isLimited;
    StreamSummary m_summary;
};

} // namespace

InfoCommand::InfoCommand(CLI::App& program)
    : Command(program, "info", "Show what a stream holds: types, times, rates, damage",
              "  tqx info log.tqx\n"
              "  tqx info day1.tqx day2.tqx\n"
              "  tqx info --json *.tqx | jq .crcErrors\n"
              "\n"
              "Several files are summed up as one stream. The text shows the first ten places of\n"
              "damage, JSON the first thousand, likewise of blocks that do not decode or have an\n"
              "unknown number. A gap is an interval of at least one and a half times the one at\n"
              "which a type usually comes, an outage is one in which blocks of no type come; JSON\n"
              "lists the first 100,000 of each with their starts. First and last are the earliest\n"
              "and the latest time. Time runs back where a block is earlier than the one of its\n"
              "type before it; an epoch is repeated when blocks of a type come with a time that\n"
              "blocks of that type had before. NMEA sentences, RTCM 3 frames and text between the\n"
              "blocks are counted apart and are no damage. Under --limit the bytes are those that\n"
              "were read so far, in pieces.\n")
{
    m_streams.addInputs(m_app);
    m_streams.addSelection(m_app);
    m_app.add_flag("--json", m_json, "A JSON object instead of text");
}

ExitStatus InfoCommand::run()
{
    Output output;
    Summarizer summarizer(output.getBuffer(), m_json, m_streams.hasLimit());
    return m_streams.read(summarizer, output);
}

} // namespace tqx::tool
