#include "commands/EphemeridesCommand.h"

#include "io/Words.h"
#include "tqx/gnss/navigation/NavigationTable.h"
#include "tqx/log/record/RecordDecoder.h"

#include <CLI/Validators.hpp>
#include <algorithm>

namespace tqx::tool
{

namespace
{

/// Gathers the selected messages, to be written at the end.
class NavigationRows : public BlockConsumer
{
public:
    NavigationRows(TableTarget& tables, std::string kind, EpochSelection selection)
        : m_tables(tables), m_kind(std::move(kind)), m_selection(std::move(selection))
    {
    }

    void take(BlockStream& stream, const Block& block) override
    {
        if (!NavigationStore::wants(block.getNumber()))
            return;
        if (const auto time = block.getTime(); time && !m_selection.isInTime(*time))
            return;
        if (const int32_t result = m_decoder.decode(block); result < 0)
            return stream.reportUndecodable(block, result);
        m_store.take(m_decoder.getDecoded());
    }

    void end(InputStream&) override
    {
        for (const std::string& line : m_store.getLosses().describe())
            words::say(line);
        if (m_kind == "ionosphere")
            return writeIonosphere(m_tables, m_store.getIonosphere());
        if (m_kind == "time")
            return writeTimeOffsets(m_tables, m_store.getTimeOffsets());
        std::vector<Ephemeris> chosen = m_store.getEphemerides();
        chosen.erase(std::remove_if(chosen.begin(), chosen.end(),
                                    [this](const Ephemeris& ephemeris) {
                                        return !m_selection.accepts(ephemeris.satellite);
                                    }),
                     chosen.end());
        writeEphemerides(m_tables, chosen);
    }

private:
    TableTarget& m_tables;
    std::string m_kind;
    EpochSelection m_selection;
    RecordDecoder m_decoder;
    NavigationStore m_store;
};

} // namespace

EphemeridesCommand::EphemeridesCommand(CLI::App& program)
    : Command(
          program, "ephemerides", "Show the orbits and clocks that satellites sent",
          "  tqx ephemerides log.tqx > ephemerides.csv\n"
          "  tqx ephemerides --satellite 'E*' --format jsonl log.tqx\n"
          "  tqx ephemerides --kind ionosphere log.tqx\n"
          "  tqx ephemerides --kind time log.tqx      # offsets between time systems\n"
          "\n"
          "Each message appears once, when it was first received, in metres, seconds and\n"
          "radians; what a message does not have is missing. Reference is a date on the\n"
          "system's time scale: UTC for GLONASS, BDT for BeiDou, GPS time or its equivalent for\n"
          "the others.\n")
{
    CLI::App& command = getApp();
    m_streams.addInputs(command);
    m_streams.addDamageReport(command);
    m_selection.addWithoutSignals(command);
    command.add_option("--kind", m_kind, "What to show")
        ->transform(
            CLI::IsMember({"orbits", "ionosphere", "time"}, CLI::ignore_case).description(""))
        ->type_name("orbits|ionosphere|time")
        ->capture_default_str();
    m_table.add(command);
}

ExitStatus EphemeridesCommand::run()
{
    const EpochSelection selection = m_selection.get();
    m_streams.checkBefore(m_table.getTarget());
    TableOutput output(m_table, "ephemerides");
    NavigationRows rows(output.getTables(), m_kind, selection);
    const ExitStatus status = m_streams.read(rows, output.getSink());
    output.finish();
    return status;
}

} // namespace tqx::tool
