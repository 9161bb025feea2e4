#include "Bindings.h"
#include "LogReader.h"
#include "OutputFile.h"
#include "tqx/gnss/navigation/NavigationStore.h"
#include "tqx/gnss/observation/EpochSelection.h"
#include "tqx/gnss/observation/ObservationGatherer.h"
#include "tqx/gnss/rinex/LogSurvey.h"
#include "tqx/gnss/rinex/NavigationFile.h"
#include "tqx/gnss/rinex/ObservationFile.h"
#include "tqx/gnss/rinex/RinexName.h"
#include "tqx/log/DataError.h"

#include <nanobind/stl/optional.h>
#include <nanobind/stl/shared_ptr.h>
#include <nanobind/stl/string.h>
#include <nanobind/stl/vector.h>

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

namespace tqx::python
{

namespace nb = nanobind;

namespace
{

using Logs = std::vector<std::shared_ptr<LogFile>>;

/// The requested RINEX files, in terms of Python.
struct RinexRequest {
    RinexOptions options;
    EpochSelection selection;
    std::string folder;
    bool isCompressed = false;
};

/// RINEX files of logs: one of observations for each antenna, one of navigation messages.
class RinexFiles
{
public:
    RinexFiles(Logs logs, RinexRequest request)
        : m_logs(std::move(logs)), m_request(std::move(request))
    {
    }

    /// Paths of the files that were written.
    std::vector<std::string> write()
    {
        survey();
        writeObservations();
        writeNavigation();
        return m_paths;
    }

private:
    struct Output {
        Output(ObservationFile toWrite, const std::string& path, bool isCompressed)
            : rinex(std::move(toWrite)), file(path, isCompressed)
        {
        }

        ObservationFile rinex;
        OutputFile file;
    };

    void survey();
    void takeMessage(const DecodedBlock& decoded);
    void writeObservations();
    void writeNavigation();
    bool isShown(ObservationEpoch& epoch, bool& isCounted) const;
    std::string pathOf(const std::string& name);

    Logs m_logs;
    RinexRequest m_request;
    LogSurvey m_survey;
    NavigationStore m_navigation;
    std::optional<GnssMillis> m_firstMessage;
    GnssMillis m_lastMessage = 0;
    std::vector<std::string> m_paths;
};

/// Reduces an epoch to what is wanted. `isCounted` is the answer for the gatherer.
bool RinexFiles::isShown(ObservationEpoch& epoch, bool& isCounted) const
{
    const EpochSelection& selection = m_request.selection;
    const bool isInTime = selection.isInTime(epoch.time);
    const bool isOnInterval = selection.isOnInterval(epoch.time);
    isCounted = !isInTime || isOnInterval;
    if (!isInTime || !isOnInterval)
        return false;
    selection.reduce(epoch);
    return true;
}

void RinexFiles::survey()
{
    ObservationGatherer gatherer([this](ObservationEpoch& epoch) {
        bool isCounted = true;
        if (isShown(epoch, isCounted))
            m_survey.take(epoch);
        return isCounted;
    });
    LogReader reader(m_logs, numbersOf([](uint16_t number) {
                         return ObservationGatherer::wants(number) || LogSurvey::wants(number) ||
                                NavigationStore::wants(number);
                     }));
    for (Block block = {}; reader.next(block);) {
        const uint16_t number = block.getNumber();
        const DecodedBlock decoded = reader.decode(block);
        if (!decoded.record)
            continue;
        if (const auto time = block.getTime(); time && number == SetUp::blockNumber)
            gatherer.advance(*time);
        if (LogSurvey::wants(number))
            m_survey.take(decoded);
        if (NavigationStore::wants(number))
            takeMessage(decoded);
        if (ObservationGatherer::wants(number))
            gatherer.take(decoded);
    }
    gatherer.finish();
    m_survey.finish();
}

void RinexFiles::takeMessage(const DecodedBlock& decoded)
{
    const auto time = decoded.block.getTime();
    if (time && m_request.selection.to && *time >= *m_request.selection.to)
        return;
    if (time) {
        m_firstMessage = m_firstMessage.value_or(*time);
        m_lastMessage = *time;
    }
    m_navigation.take(decoded);
}

/// Path of a new file; a second file of the same name gets a number.
std::string RinexFiles::pathOf(const std::string& name)
{
    const std::string ending = m_request.isCompressed ? ".gz" : "";
    std::string path;
    for (unsigned i = 1; i == 1 || std::find(m_paths.begin(), m_paths.end(), path) != m_paths.end();
         ++i) {
        const std::string unique = i == 1 ? name : std::to_string(i) + "-" + name;
        path = (std::filesystem::path(m_request.folder) / (unique + ending)).string();
    }
    m_paths.push_back(path);
    return path;
}

void RinexFiles::writeObservations()
{
    std::vector<std::unique_ptr<Output>> outputs;
    for (const auto& [antenna, survey] : m_survey.getAntennas()) {
        ObservationFile rinex(m_survey, antenna, m_request.options);
        if (!rinex.hasSignals())
            continue;
        NameParts parts;
        parts.marker = m_request.options.marker;
        parts.setUp = rinex.getSetUp();
        parts.antenna = antenna;
        parts.first = survey.first;
        parts.last = survey.last;
        parts.interval = survey.getInterval();
        const std::string path = pathOf(observationFileName(parts));
        outputs.push_back(std::make_unique<Output>(std::move(rinex), path, m_request.isCompressed));
        outputs.back()->rinex.writeHeader(outputs.back()->file.getBuffer());
    }
    if (outputs.empty())
        return;
    ObservationGatherer gatherer([&](ObservationEpoch& epoch) {
        bool isCounted = true;
        if (isShown(epoch, isCounted)) {
            for (const auto& output : outputs) {
                output->rinex.write(output->file.getBuffer(), epoch);
                output->file.commit();
            }
        }
        return isCounted;
    });
    LogReader reader(m_logs, numbersOf([](uint16_t number) {
                         return number == SetUp::blockNumber || ObservationGatherer::wants(number);
                     }));
    for (Block block = {}; reader.next(block);) {
        const DecodedBlock decoded = reader.decode(block);
        if (!decoded.record)
            continue;
        if (block.getNumber() != SetUp::blockNumber) {
            gatherer.take(decoded);
            continue;
        }
        if (const auto time = block.getTime())
            gatherer.advance(*time);
        for (const auto& output : outputs)
            output->rinex.change(SetUp::of(decoded));
    }
    gatherer.finish();
    for (const auto& output : outputs)
        output->file.finish();
}

void RinexFiles::writeNavigation()
{
    const auto& ephemerides = m_navigation.getEphemerides();
    if (std::none_of(ephemerides.begin(), ephemerides.end(), [this](const Ephemeris& ephemeris) {
            return isWritten(ephemeris, m_request.options.version) &&
                   m_request.selection.accepts(ephemeris.satellite);
        }))
        return;
    NameParts parts;
    parts.marker = m_request.options.marker;
    parts.setUp = m_survey.getSetUp().value_or(SetUp());
    parts.first = m_firstMessage.value_or(0);
    parts.last = m_lastMessage;
    if (!m_survey.getAntennas().empty()) {
        const AntennaSurvey& main = m_survey.getAntennas().begin()->second;
        parts.first = main.first;
        parts.last = main.last;
        parts.interval = main.getInterval();
    }
    OutputFile file(pathOf(navigationFileName(parts)), m_request.isCompressed);
    writeNavigationFile(file.getBuffer(), m_navigation, m_request.selection,
                        m_survey.getLeapSeconds(), m_request.options);
    file.finish();
}

std::vector<std::string> writeRinex(const Logs& logs, const RinexRequest& request)
{
    const nb::gil_scoped_release unlocked;
    std::error_code error;
    std::filesystem::create_directories(request.folder, error);
    if (error)
        throw DataError(request.folder + ": " + error.message());
    return RinexFiles(logs, request).write();
}

template<typename Member>
auto option(Member RinexOptions::*member)
{
    return
        [member](RinexRequest& request, const Member& value) { request.options.*member = value; };
}

} // namespace

void bindRinex(nb::module_& module)
{
    nb::class_<RinexRequest>(module, "RinexRequest")
        .def(nb::init<>())
        .def("set_version",
             [](RinexRequest& request, bool isNewer) {
                 request.options.version = isNewer ? RinexVersion::V402 : RinexVersion::V305;
             })
        .def("set_program", option(&RinexOptions::program))
        .def("set_date", option(&RinexOptions::date))
        .def("set_marker", option(&RinexOptions::marker))
        .def("set_observer", option(&RinexOptions::observer))
        .def("set_agency", option(&RinexOptions::agency))
        .def(
            "set_selection",
            [](RinexRequest& request, std::optional<GnssMillis> from, std::optional<GnssMillis> to,
               uint64_t interval, std::vector<std::string> satellites,
               std::vector<std::string> signals) {
                request.selection.from = from;
                request.selection.to = to;
                request.selection.interval = interval;
                request.selection.satellites = std::move(satellites);
                request.selection.signals = std::move(signals);
            },
            nb::arg("start").none(), nb::arg("end").none(), nb::arg("interval"),
            nb::arg("satellites"), nb::arg("signals"))
        .def_rw("folder", &RinexRequest::folder)
        .def_rw("is_compressed", &RinexRequest::isCompressed);
    module.def("write_rinex", writeRinex);
}

} // namespace tqx::python
