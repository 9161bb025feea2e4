#include "commands/InfoCommand.h"

#include "io/Output.h"
#include "io/Terminal.h"
#include "output/SummaryTable.h"
#include "output/SummaryText.h"
#include "tqx/log/summary/StreamSummary.h"

#include <functional>
#include <memory>
#include <utility>

namespace tqx::tool
{

namespace
{

using Show = std::function<void(const InputStream&, const StreamSummary&)>;

class Summarizer : public BlockConsumer
{
public:
    Summarizer(const Schema& schema, Show show, bool isLimited)
        : m_show(std::move(show)), m_isLimited(isLimited), m_summary(schema)
    {
    }

    void begin(InputStream& stream) override
    {
        stream.setGapListener([this](const StreamGap& gap) { m_summary.addDamage(gap); });
        stream.setNeighbourListener(
            [this](const Neighbour& neighbour) { m_summary.addNeighbour(neighbour); });
    }
    void take(BlockStream& stream, const Block& block) override { m_summary.add(stream, block); }
    // What is shown for a whole stream is counted up to the current place.
    bool canSkip() const override { return !m_isLimited; }
    void end(InputStream& stream) override
    {
        if (!stream.hasFailed() || stream.getCounts().bytes != 0)
            m_show(stream, m_summary);
    }

private:
    Show m_show;
    bool m_isLimited;
    StreamSummary m_summary;
};

} // namespace

InfoCommand::InfoCommand(CLI::App& program)
    : Command(
          program, "info", "Show what a stream holds: types, times, rates, damage",
          "  tqx info log.tqx\n"
          "  tqx info day1.tqx day2.tqx\n"
          "  tqx info --json *.tqx | jq .crcErrors\n"
          "  tqx info --each monday.tqx tuesday.tqx\n"
          "\n"
          "Several files are read as one stream. With --each, every file is a separate stream\n"
          "with its own column, which counts the blocks of each type, with their rate and gaps.\n"
          "\n"
          "The text shows the first ten places of damage, JSON the first thousand; likewise for\n"
          "blocks that do not decode or have an unknown number. A gap is an interval of at\n"
          "least one and a half times the usual one of a type; an outage is a gap in the blocks\n"
          "of all types. JSON lists the first 100,000 of each with their starts. First and last\n"
          "are the earliest and the latest time. Time runs back where a block is earlier than\n"
          "the previous one of its type; an epoch is repeated when a type recurs with an\n"
          "earlier time of its own. NMEA sentences, RTCM 3 frames and text between the blocks\n"
          "are counted separately and are not damage. With --limit, the bytes are those read so\n"
          "far, in pieces.\n")
{
    m_streams.addInputs(m_app);
    m_streams.addSelection(m_app);
    m_app.add_flag("--json", m_json, "Write a JSON object instead of text");
    m_app.add_flag(
        "--each", m_isEach,
        "Compare files side by side: one column each, or with --json an array of objects");
}

/// Logs side by side.
ExitStatus InfoCommand::showEach(Output& output)
{
    SummaryTable table;
    Buffer object;
    bool hasObjects = false;
    const auto makeSummarizer = [&] {
        return std::make_unique<Summarizer>(
            m_streams.getSchema(),
            [&](const InputStream& stream, const StreamSummary& summary) {
                if (!m_json)
                    return table.add(stream, summary);
                object.clear();
                appendSummaryJson(object, stream, summary);
                output.getBuffer().append(hasObjects ? "," : "[");
                output.getBuffer().append(object.view());
                hasObjects = true;
            },
            m_streams.getLimit() != 0);
    };
    const ExitStatus status = m_streams.readEach(makeSummarizer, output);
    if (m_json) {
        output.getBuffer().append(hasObjects ? "]\n" : "[]\n");
    } else {
        table.append(output.getBuffer(), outputWidth());
    }
    output.flush();
    return status;
}

ExitStatus InfoCommand::run()
{
    Output output;
    if (m_isEach)
        return showEach(output);
    const auto show = [&](const InputStream& stream, const StreamSummary& summary) {
        if (m_json) {
            appendSummaryJson(output.getBuffer(), stream, summary);
        } else {
            appendSummaryText(output.getBuffer(), stream, summary);
        }
    };
    Summarizer summarizer(m_streams.getSchema(), show, m_streams.getLimit() != 0);
    return m_streams.read(summarizer, output);
}

} // namespace tqx::tool
