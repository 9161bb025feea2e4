#include "Bindings.h"
#include "LogReader.h"
#include "tqx/gnss/rinex/RinexFiles.h"
#include "tqx/log/DataError.h"

#include <nanobind/stl/optional.h>
#include <nanobind/stl/shared_ptr.h>
#include <nanobind/stl/string.h>
#include <nanobind/stl/vector.h>

#include <filesystem>
#include <system_error>
#include <utility>

namespace tqx::python
{

namespace nb = nanobind;

namespace
{

using Logs = std::vector<std::shared_ptr<LogFile>>;

std::vector<std::string> writeRinex(const Logs& logs, const RinexRequest& request)
{
    const nb::gil_scoped_release unlocked;
    std::error_code error;
    std::filesystem::create_directories(request.folder, error);
    if (error)
        throw DataError(request.folder + ": " + error.message());
    RinexFiles files(request);
    LogReader survey(logs, numbersOf(RinexFiles::isSurveyed));
    for (Block block = {}; survey.next(block);) {
        const DecodedBlock decoded = survey.decode(block);
        if (decoded.record)
            files.survey(decoded);
    }
    files.endSurvey();
    LogReader second(logs, numbersOf(RinexFiles::isWritten));
    for (Block block = {}; files.hasObservations() && second.next(block);) {
        const DecodedBlock decoded = second.decode(block);
        if (decoded.record)
            files.write(decoded);
    }
    std::vector<std::string> paths = files.finishObservations();
    if (std::string navigation = files.writeNavigation(); !navigation.empty())
        paths.push_back(std::move(navigation));
    return paths;
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
