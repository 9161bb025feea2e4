#include "Bindings.h"
#include "Interrupts.h"
#include "LogFile.h"
#include "output/ReferenceTrack.h"
#include "output/ReportText.h"
#include "tqx/gnss/quality/QualityGatherer.h"
#include "tqx/log/DataError.h"
#include "tqx/log/record/RecordDecoder.h"
#include "tqx/log/source/JoinedSource.h"
#include "tqx/log/stream/BlockStream.h"
#include "tqx/log/write/ProductFile.h"

#include <nanobind/stl/optional.h>
#include <nanobind/stl/shared_ptr.h>
#include <nanobind/stl/string.h>
#include <nanobind/stl/tuple.h>
#include <nanobind/stl/vector.h>

#include <nlohmann/json.hpp>

#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace tqx::python
{

namespace nb = nanobind;

namespace
{

using Logs = std::vector<std::shared_ptr<LogFile>>;

/// Hands damage on.
class DamageListener : public StreamListener
{
public:
    explicit DamageListener(quality::QualityGatherer& gatherer) : m_gatherer(gatherer) {}

    void onGap(const StreamGap& gap) override { m_gatherer.addDamage(gap); }
    void onUndecodable(const std::string&, const Block&, int32_t) override {}

private:
    quality::QualityGatherer& m_gatherer;
};

/// The bytes of files that follow each other.
std::unique_ptr<ByteSource> sourceOf(const Logs& log)
{
    if (log.size() == 1)
        return log.front()->openSource();
    std::vector<std::string> paths;
    for (const auto& file : log)
        paths.push_back(file->getName());
    return std::make_unique<JoinedSource>(
        paths, [](const SourceError& error) { throw SourceError(error); });
}

tool::LogReport reportOf(const Logs& log, const quality::QualityOptions& options)
{
    constexpr unsigned blocksPerCheck = 1024;
    quality::QualityGatherer gatherer(options);
    DamageListener listener(gatherer);
    const std::unique_ptr<ByteSource> source = sourceOf(log);
    BlockStream stream(*source, &listener);
    RecordDecoder decoder;
    unsigned count = 0;
    for (Block block = {}; stream.next(block);) {
        if (++count % blocksPerCheck == 0)
            checkInterrupt();
        if (!quality::QualityGatherer::wants(block.getNumber()))
            continue;
        if (const int32_t result = decoder.decode(block); result < 0) {
            stream.reportUndecodable(block, result);
        } else {
            gatherer.take(decoder.getDecoded());
        }
    }
    std::string name;
    for (const auto& file : log)
        name += (name.empty() ? "" : ", ") + file->getName();
    return {name, gatherer.finish(stream.getCounts()), {}};
}

using Place = std::tuple<double, double, double>;

/// The reports of logs as a JSON object, and as a page if `page` is not empty.
std::string report(const std::vector<Logs>& logs, const std::string& page, double mask,
                   const std::optional<Place>& place, const Logs& track)
{
    const nb::gil_scoped_release unlocked;
    if (!page.empty() && !tool::canWritePage())
        throw DataError("this package was built without npm and cannot write pages");
    quality::QualityOptions options;
    options.mask = mask;
    if (place)
        options.reference.fixed = {std::get<0>(*place), std::get<1>(*place), std::get<2>(*place)};
    if (!track.empty()) {
        const std::unique_ptr<ByteSource> source = sourceOf(track);
        BlockStream stream(*source);
        options.reference.track = tool::readReferenceTrack(stream);
        if (options.reference.track.empty())
            throw DataError(track.front()->getName() + ": no positions");
    }
    std::vector<tool::LogReport> reports;
    reports.reserve(logs.size());
    for (const Logs& log : logs)
        reports.push_back(reportOf(log, options));
    if (!page.empty()) {
        ProductFile file(page);
        tool::appendReportPage(file.getBuffer(), reports, {});
        file.finish();
    }
    return tool::reportJson(reports, {})
        .dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

} // namespace

void bindReport(nb::module_& module)
{
    module.def("report", report, nb::arg("logs"), nb::arg("page"), nb::arg("mask"),
               nb::arg("place").none(), nb::arg("track"));
    module.def("can_write_page", tool::canWritePage);
}

} // namespace tqx::python
