#include "commands/EncodeCommand.h"

#include "io/Interrupt.h"
#include "io/LineReader.h"
#include "io/Output.h"
#include "io/Progress.h"
#include "io/Target.h"
#include "io/ToolError.h"
#include "io/Words.h"
#include "options/Numbers.h"
#include "tqx/log/read/LineEncoder.h"
#include "tqx/log/read/LineError.h"

#include <fmt/format.h>

namespace tqx::tool
{

EncodeCommand::EncodeCommand(CLI::App& program)
    : Command(
          program, "encode", "Encode JSON Lines from dump --format jsonl --raw as blocks",
          "  tqx dump --format jsonl --raw log.tqx | tqx encode - -o copy.tqx\n"
          "\n"
          "A line that cannot be encoded is reported as FILE:LINE: MESSAGE and skipped; the exit\n"
          "status is then 1. Fields that are left out keep their initial values. Counts follow\n"
          "from arrays and texts; Length and CRC are computed. A packed word may be given as\n"
          "its named bit ranges. If a line has bytes, they are the block, and fields that\n"
          "differ from them are reported. Lines of scaled values (dump without --raw) are\n"
          "reported once and skipped.\n")
{
    m_app
        .add_option("FILE", m_files,
                    "Files to read, one after the other, also compressed with gzip or zstd; - is "
                    "standard input")
        ->required()
        ->type_name("");
    m_descriptions.add(m_app);
    m_app.add_flag("-v,--verbose", m_verbose,
                   "Report every line that cannot be encoded, not only the first ten");
    addBytes(m_app, "--max-line", m_longestLine, "Skip and report longer lines; 64 MiB by default")
        ->type_name("BYTES")
        ->default_str("");
    m_app.add_option("-o,--output", m_target, "File to write instead of standard output")
        ->type_name("FILE");
}

ExitStatus EncodeCommand::run()
{
    refuseSameFile(m_files, m_target);
    if (m_target != "-")
        refuseUnreadable(m_files);
    refuseTerminal(m_target);
    Output output(m_target);
    LineEncoder encoder(m_descriptions.getSchema());
    Progress progress(m_files, true);
    bool complete = true;
    Reports reports = {words::Limit(m_verbose), words::Limit(m_verbose), false};
    for (const std::string& path : m_files) {
        try {
            complete = encodeFile(path, encoder, progress, output, reports) && complete;
        } catch (const SourceError& error) {
            words::say(error.what());
            complete = false;
        }
    }
    output.flush();
    if (reports.errors.getOthers() != 0) {
        words::say(fmt::format("{} more lines cannot be encoded (-v reports them all)",
                               reports.errors.getOthers()));
    }
    if (reports.differences.getOthers() != 0) {
        words::say(fmt::format("{} more lines differ from the bytes beside them",
                               reports.differences.getOthers()));
    }
    return complete ? ExitStatus::Done : ExitStatus::Failed;
}

bool EncodeCommand::encodeFile(const std::string& path, LineEncoder& encoder, Progress& progress,
                               Output& output, Reports& reports)
{
    LineReader reader(path, m_longestLine, progress, [&output] { output.flush(); });
    bool complete = true;
    std::string line;
    for (size_t number = 1; reader.next(line); ++number) {
        if (reader.isTooLong()) {
            if (reports.errors.admits()) {
                words::sayLine(path, number,
                               fmt::format("longer than {} bytes (see --max-line)", m_longestLine));
            }
            complete = false;
            continue;
        }
        if (line.find_first_not_of(" \t") == std::string::npos)
            continue;
        if (interrupt::hasCome())
            break; // the line may be cut off
        try {
            const std::vector<uint8_t>& block = encoder.encode(line);
            output.getBuffer().append(reinterpret_cast<const char*>(block.data()), block.size());
            output.commit();
            if (!encoder.getWarning().empty() && reports.differences.admits())
                words::sayLine(path, number, encoder.getWarning());
        } catch (const ScaledLineError& error) {
            if (!reports.hasSaidScaled)
                words::sayLine(path, number, error.what());
            reports.hasSaidScaled = true;
            complete = false;
        } catch (const LineError& error) {
            if (reports.errors.admits())
                words::sayLine(path, number, error.what());
            complete = false;
        }
    }
    return complete;
}

} // namespace tqx::tool
