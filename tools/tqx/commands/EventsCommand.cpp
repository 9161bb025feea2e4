#include "commands/EventsCommand.h"

#include "io/Output.h"
#include "io/Words.h"
#include "tqx/gnss/event/EventGatherer.h"
#include "tqx/gnss/event/EventWriter.h"
#include "tqx/log/record/RecordDecoder.h"

#include <CLI/Validators.hpp>
#include <fmt/format.h>

namespace tqx::tool
{

namespace
{

class EventRows : public BlockConsumer
{
public:
    EventRows(EventWriter& writer, const EpochSelection& times)
        : m_gatherer([this, &writer, times](const Event& event) {
              if (!times.isInTime(event.time))
                  return;
              ++m_count;
              m_withoutPlace += event.placeOrigin == Event::Origin::None ? 1 : 0;
              writer.add(event);
          })
    {
    }

    void take(BlockStream& stream, const Block& block) override
    {
        if (!EventGatherer::wants(block.getNumber()))
            return;
        if (const int32_t result = m_decoder.decode(block); result < 0)
            return stream.reportUndecodable(block, result);
        m_gatherer.take(m_decoder.getRecord());
    }

    void end(InputStream&) override { m_gatherer.finish(); }

    uint64_t getCount() const { return m_count; }
    uint64_t getWithoutPlace() const { return m_withoutPlace; }

private:
    RecordDecoder m_decoder;
    uint64_t m_count = 0;
    uint64_t m_withoutPlace = 0;
    EventGatherer m_gatherer;
};

} // namespace

EventsCommand::EventsCommand(CLI::App& program)
    : Command(program, "events",
              "Write input pulses, such as camera triggers, with their positions",
              "  tqx events flight.tqx > pictures.csv\n"
              "  tqx events --format geojson flight.tqx -o pictures.geojson\n"
              "\n"
              "One row per pulse. Position and attitude are those that the receiver wrote for it;\n"
              "where it wrote none, they are interpolated between the epochs before and after, up\n"
              "to 5 seconds apart, using both velocities. The best kind of block that has both\n"
              "epochs is used, in the order of tqx help track; the columns Position and Attitude\n"
              "say which. Several files are one stream.\n"
              "\n"
              "Times: --from and --to are written as for tqx dump.\n")
{
    CLI::App& command = getApp();
    m_streams.addInputs(command);
    m_streams.addDamageReport(command);
    m_times.addTimes(command);
    command.add_option("--format", m_format, "Output format")
        ->transform(CLI::IsMember({"csv", "geojson"}, CLI::ignore_case).description(""))
        ->type_name("csv|geojson")
        ->capture_default_str();
    command.add_option("-o,--output", m_target, "File to write instead of standard output")
        ->type_name("FILE");
}

ExitStatus EventsCommand::run()
{
    const EpochSelection times = m_times.get();
    m_streams.checkBefore(m_target);
    Output output(m_target);
    EventWriter writer(m_format == "csv" ? EventFormat::Csv : EventFormat::GeoJson,
                       output.getBuffer());
    EventRows rows(writer, times);
    writer.begin();
    const ExitStatus status = m_streams.read(rows, output);
    writer.end();
    output.flush();
    if (m_streams.isQuiet())
        return status;
    if (rows.getCount() == 0) {
        words::say("no event in these logs");
    } else if (rows.getWithoutPlace() != 0) {
        words::say(fmt::format("{} of {} events without a position", rows.getWithoutPlace(),
                               rows.getCount()));
    }
    return status;
}

} // namespace tqx::tool
