#include "Bindings.h"
#include "LogReader.h"
#include "Products.h"
#include "tqx/gnss/track/GeoPackage.h"
#include "tqx/gnss/track/TrackWriter.h"
#include "tqx/log/DataError.h"
#include "tqx/log/write/ProductFile.h"

#include <nanobind/stl/optional.h>
#include <nanobind/stl/shared_ptr.h>
#include <nanobind/stl/string.h>
#include <nanobind/stl/vector.h>

#include <algorithm>
#include <array>
#include <functional>
#include <string_view>

namespace tqx::python
{

namespace nb = nanobind;

namespace
{

using Logs = std::vector<std::shared_ptr<LogFile>>;

/// Calls `add` with the positions of a source and returns how many there are.
uint64_t readPositions(const Logs& logs, const PositionSource& source,
                       std::optional<GnssMillis> from, std::optional<GnssMillis> to,
                       const std::function<void(const Position&)>& add)
{
    LogReader reader(logs, {source.number}, from, to);
    uint64_t count = 0;
    Position position;
    for (Block block = {}; reader.next(block);) {
        const DecodedBlock decoded = reader.decode(block);
        if (!decoded.record || !readPosition(decoded.record, position))
            continue;
        count += position.fix == Fix::None ? 0 : 1;
        add(position);
    }
    return count;
}

/// Writes a track and returns the number of its positions.
uint64_t writeTrack(const Logs& logs, const std::string& path, const std::string& format,
                    const std::string& name, const std::string& sourceName,
                    std::optional<GnssMillis> from, std::optional<GnssMillis> to)
{
    static constexpr std::array<std::string_view, 5> formats = {"csv", "gpx", "kml", "geojson",
                                                                "nmea"};
    const nb::gil_scoped_release unlocked;
    const PositionSource* const source = findPositionSource(logs, sourceName);
    if (!source)
        throw DataError("no log has positions");
    if (format == "gpkg") {
        GeoPackage package(path, "positions");
        const uint64_t count = readPositions(
            logs, *source, from, to, [&](const Position& position) { package.add(position); });
        package.finish();
        return count;
    }
    const auto place = std::find(formats.begin(), formats.end(), format);
    if (place == formats.end())
        throw DataError("there is no format of tracks named " + format +
                        "; they are csv, gpx, kml, geojson, nmea and gpkg");
    ProductFile file(path);
    const auto writer =
        makeTrackWriter(static_cast<TrackFormat>(place - formats.begin()), file.getBuffer(), name);
    writer->begin();
    const uint64_t count = readPositions(logs, *source, from, to, [&](const Position& position) {
        writer->add(position);
        file.commit();
    });
    writer->end();
    file.finish();
    return count;
}

} // namespace

void bindTrack(nb::module_& module)
{
    module.def("write_track", writeTrack, nb::arg("logs"), nb::arg("path"), nb::arg("format"),
               nb::arg("name"), nb::arg("source"), nb::arg("start").none(), nb::arg("end").none());
}

} // namespace tqx::python
