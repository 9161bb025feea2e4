#include "commands/ObservationsCommand.h"

#include "io/Output.h"
#include "io/Words.h"
#include "tqx/gnss/observation/ObservationGatherer.h"
#include "tqx/gnss/observation/ObservationTable.h"
#include "tqx/log/record/RecordDecoder.h"

#include <CLI/Validators.hpp>

namespace tqx::tool
{

namespace
{

class ObservationRows : public BlockConsumer
{
public:
    ObservationRows(Buffer& out, RowFormat format, EpochSelection selection)
        : m_out(out), m_selection(std::move(selection)), m_table(format),
          m_gatherer([this](ObservationEpoch& epoch) { return show(epoch); })
    {
        m_table.writeHead(m_out);
    }

    void take(BlockStream& stream, const Block& block) override
    {
        if (!ObservationGatherer::wants(block.getNumber()))
            return;
        if (const int32_t result = m_decoder.decode(block); result < 0)
            return stream.reportUndecodable(block, result);
        m_gatherer.take(m_decoder.getDecoded());
    }

    void end(InputStream&) override
    {
        m_gatherer.finish();
        for (const std::string& line : m_gatherer.getLosses().describe())
            words::say(line);
    }

private:
    bool show(ObservationEpoch& epoch)
    {
        if (!m_selection.isInTime(epoch.time))
            return true;
        if (!m_selection.isOnInterval(epoch.time))
            return false;
        m_selection.reduce(epoch);
        m_table.write(m_out, epoch);
        return true;
    }

    Buffer& m_out;
    EpochSelection m_selection;
    ObservationTable m_table;
    RecordDecoder m_decoder;
    ObservationGatherer m_gatherer;
};

} // namespace

ObservationsCommand::ObservationsCommand(CLI::App& program)
    : Command(program, "observations", "Show what was measured of each satellite and signal",
              "  tqx observations log.tqx > observations.csv\n"
              "  tqx observations --satellite 'G*,E*' --signal '1C' --interval 30 log.tqx\n"
              "  tqx observations --format jsonl log.tqx | jq 'select(.Lost)'\n"
              "\n"
              "One row for each epoch, satellite, signal and antenna, from the measurement blocks "
              "of\n"
              "all generations; signals are named by band and attribute as in RINEX. Values are\n"
              "those of the receiver: no correction is applied, and its clock is not taken out.\n"
              "Lost says that lock was lost since the epoch before, HalfCycle that the phase may "
              "be\n"
              "wrong by half a cycle. Channel is the frequency number of GLONASS satellites.\n"
              "\n" +
                  std::string(EpochOptions::notes))
{
    CLI::App& command = getApp();
    m_streams.addInputs(command);
    m_streams.addDamageReport(command);
    m_epochs.add(command);
    command.add_option("--format", m_format, "How to write them")
        ->transform(CLI::IsMember({"csv", "jsonl"}, CLI::ignore_case).description(""))
        ->type_name("csv|jsonl")
        ->capture_default_str();
    command.add_option("-o,--output", m_target, "File to write instead of standard output")
        ->type_name("FILE");
}

ExitStatus ObservationsCommand::run()
{
    const EpochSelection selection = m_epochs.get();
    m_streams.checkBefore(m_target);
    Output output(m_target);
    ObservationRows rows(output.getBuffer(),
                         m_format == "csv" ? RowFormat::Csv : RowFormat::JsonLines, selection);
    return m_streams.read(rows, output);
}

} // namespace tqx::tool
