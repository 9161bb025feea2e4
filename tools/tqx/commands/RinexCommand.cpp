#include "commands/RinexCommand.h"

#include "io/Sink.h"
#include "io/ToolError.h"
#include "output/RinexRun.h"
#include "tqx/log/time/CalendarDate.h"

#include <CLI/Validators.hpp>
#include <fmt/format.h>

#include <chrono>
#include <filesystem>
#include <system_error>

namespace tqx::tool
{

namespace
{

std::string dateNow()
{
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(
                             std::chrono::system_clock::now().time_since_epoch())
                             .count();
    constexpr int64_t toGnssEpoch = 315964800; // from 1970-01-01 to 1980-01-06
    const auto now = static_cast<uint64_t>(seconds - toGnssEpoch);
    const CalendarDate date = dateOf(now / 86400);
    return fmt::format("{:04}{:02}{:02} {:02}{:02}{:02} UTC", date.year, date.month, date.day,
                       now / 3600 % 24, now / 60 % 60, now % 60);
}

} // namespace

RinexCommand::RinexCommand(CLI::App& program)
    : Command(
          program, "rinex", "Write RINEX observation and navigation files",
          "  tqx rinex day.tqx\n"
          "  tqx rinex day.tqx.gz -o rinex --interval 30 --gzip\n"
          "  tqx rinex --rinex 4.02 --marker GRAZ --observer 'A. Surveyor' day.tqx\n"
          "  tqx rinex --satellite 'G*,E*' --from 2400:216000 --to 2400:219600 day.tqx\n"
          "\n"
          "The files, one of observations per antenna and one of navigation messages, have long\n"
          "names made from marker, start, length and interval. Times and observations are those\n"
          "of the receiver, whose clock is not removed; the clock offset of an epoch is written\n"
          "where the log has it. Headers describe the whole log, so it is read twice; standard\n"
          "input is kept in a temporary file in the folder.\n"
          "\n" +
              std::string(EpochOptions::notes))
{
    CLI::App& command = getApp();
    m_streams.addInputs(command);
    m_streams.addDamageReport(command);
    m_epochs.add(command);
    command.add_option("-o,--output", m_folder, "Folder for the files, created if missing")
        ->type_name("FOLDER")
        ->capture_default_str();
    command.add_option("--rinex", m_version, "Version of the files")
        ->transform(CLI::IsMember({"3.05", "4.02"}).description(""))
        ->type_name("3.05|4.02")
        ->capture_default_str();
    command.add_flag("--gzip", m_isCompressed, "Compress the files");
    command.add_option("--marker", m_marker, "Name of the marker, instead of that in the log")
        ->type_name("NAME");
    command.add_option("--observer", m_observer, "Observer, instead of the one in the log")
        ->type_name("NAME");
    command.add_option("--agency", m_agency, "Agency, instead of the one in the log")
        ->type_name("NAME");
}

ExitStatus RinexCommand::run()
{
    RinexRequest request;
    request.selection = m_epochs.get();
    request.options.version = m_version == "3.05" ? RinexVersion::V305 : RinexVersion::V402;
    request.options.program = "tqx";
    request.options.date = dateNow();
    request.options.marker = m_marker;
    request.options.observer = m_observer;
    request.options.agency = m_agency;
    request.folder = m_folder;
    request.isCompressed = m_isCompressed;
    m_streams.checkBefore(m_folder);
    std::error_code error;
    std::filesystem::create_directories(m_folder, error);
    if (error)
        throw ToolError(m_folder + ": " + error.message());

    RinexRun files(request, m_streams.hasStandardInput());
    NoSink nothing;
    const ExitStatus status = m_streams.read(files, nothing);
    return worse(status, files.writeFiles(m_streams.getFiles(), m_streams.isQuiet()));
}

} // namespace tqx::tool
