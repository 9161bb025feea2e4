#include "commands/ObservationsCommand.h"

#include "io/Words.h"
#include "tqx/gnss/observation/ObservationGatherer.h"
#include "tqx/gnss/observation/ObservationTable.h"
#include "tqx/log/record/RecordDecoder.h"

namespace tqx::tool
{

namespace
{

class ObservationRows : public BlockConsumer
{
public:
    ObservationRows(TableTarget& tables, EpochSelection selection)
        : m_selection(std::move(selection)), m_table(tables),
          m_gatherer([this](ObservationEpoch& epoch) { return show(epoch); })
    {
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
        m_table.write(epoch);
        return true;
    }

    EpochSelection m_selection;
    ObservationTable m_table;
    RecordDecoder m_decoder;
    ObservationGatherer m_gatherer;
};

} // namespace

ObservationsCommand::ObservationsCommand(CLI::App& program)
    : Command(
          program, "observations", "Show the measurements of each satellite and signal",
          "  tqx observations log.tqx > observations.csv\n"
          "  tqx observations --satellite 'G*,E*' --signal '1C' --interval 30 log.tqx\n"
          "  tqx observations --format jsonl log.tqx | jq 'select(.Lost)'\n"
          "  tqx observations --format sqlite log.tqx -o log.sqlite\n"
          "\n"
          "One row per epoch, satellite, signal and antenna, from the measurement blocks of all\n"
          "generations; signals are named by band and attribute as in RINEX. Values are those\n"
          "of the receiver: no correction is applied, and its clock is not removed. Lost means\n"
          "that lock was lost since the previous epoch, HalfCycle that the phase may be wrong\n"
          "by half a cycle. Channel is the frequency number of GLONASS satellites.\n"
          "\n" +
              std::string(EpochOptions::notes))
{
    CLI::App& command = getApp();
    m_streams.addInputs(command);
    m_streams.addDamageReport(command);
    m_epochs.add(command);
    m_table.add(command);
}

ExitStatus ObservationsCommand::run()
{
    const EpochSelection selection = m_epochs.get();
    m_streams.checkBefore(m_table.getTarget());
    TableOutput output(m_table, "observations");
    const ExitStatus status = [&] {
        ObservationRows rows(output.getTables(), selection);
        return m_streams.read(rows, output.getSink());
    }();
    output.finish();
    return status;
}

} // namespace tqx::tool
