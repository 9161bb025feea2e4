#include "Bindings.h"
#include "LogFile.h"
#include "tqx/log/record/TypeNames.h"
#include "tqx/log/select/TimeText.h"
#include "tqx/log/stream/Block.h"
#include "tqx/log/time/LeapSeconds.h"

#include <nanobind/stl/function.h>
#include <nanobind/stl/optional.h>
#include <nanobind/stl/shared_ptr.h>
#include <nanobind/stl/string.h>
#include <nanobind/stl/vector.h>

namespace tqx::python
{

namespace nb = nanobind;

namespace
{

/// Calls a Python function from work that does not hold the lock.
IndexProgress withLock(const nb::object& progress)
{
    if (progress.is_none())
        return {};
    return [&progress](uint64_t done) {
        const nb::gil_scoped_acquire lock;
        progress(done);
    };
}

void load(LogFile& log, const nb::object& progress)
{
    const IndexProgress hears = withLock(progress);
    const nb::gil_scoped_release unlocked;
    log.load(hears);
}

std::vector<std::shared_ptr<LogFile>> join(const std::vector<std::shared_ptr<LogFile>>& files,
                                           const nb::object& progress)
{
    const IndexProgress hears = withLock(progress);
    const nb::gil_scoped_release unlocked;
    return joinLogs(files, hears);
}

bool save(LogFile& log)
{
    const nb::gil_scoped_release unlocked;
    return log.save();
}

/// Number and count of each type.
nb::list types(const LogFile& log)
{
    nb::list list;
    for (const Index::Type& type : log.getIndex().getTypes())
        list.append(nb::make_tuple(type.number, describeBlock(type.number), type.blocks));
    return list;
}

nb::dict counts(const LogFile& log)
{
    const StreamCounts counts = log.getIndex().getCounts();
    nb::dict all;
    all["bytes"] = counts.bytes;
    all["blocks"] = counts.blocks;
    all["dropped_bytes"] = counts.droppedBytes;
    all["checksum_errors"] = counts.crcErrors;
    all["invalid_lengths"] = counts.invalidLengths;
    return all;
}

nb::list gaps(const LogFile& log)
{
    nb::list list;
    log.getIndex().visitGaps([&](const StreamGap& gap) {
        const ByteSource::Place place = log.placeOf(gap.offset);
        list.append(
            nb::make_tuple(place.file, place.offset, gap.bytes, gap.crcErrors, gap.invalidLengths));
    });
    return list;
}

/// Constructs in place, as the binding requires.
void makePartition(Partition* part, uint64_t begin, uint64_t end, uint8_t week, uint32_t tow,
                   std::optional<GnssMillis> timeBefore)
{
    new (part) Partition;
    part->begin = begin;
    part->end = end;
    part->context = {week, tow};
    part->timeBefore = timeBefore;
}

} // namespace

void bindLogs(nb::module_& module)
{
    nb::class_<LogFile>(module, "LogFile")
        .def(nb::new_([](const std::string& path, const Schema& schema) {
            return std::make_shared<LogFile>(path, schema);
        }))
        .def_static("of_bytes",
                    [](const nb::bytes& bytes, const std::string& name, const Schema& schema) {
                        const auto* data = static_cast<const uint8_t*>(bytes.data());
                        return std::make_shared<LogFile>(
                            std::vector<uint8_t>(data, data + bytes.size()), name, schema);
                    })
        .def("load", load, nb::arg("progress").none())
        .def("save", save)
        .def_prop_ro("name", &LogFile::getName)
        .def_prop_ro("packed_size", &LogFile::getPackedSize)
        .def_prop_ro("is_compressed", &LogFile::isCompressed)
        .def_prop_ro("is_index_saved", &LogFile::isIndexSaved)
        .def_prop_ro("warnings", &LogFile::getWarnings)
        .def_prop_ro("first_time", [](const LogFile& log) { return log.getIndex().getFirstTime(); })
        .def_prop_ro("last_time", [](const LogFile& log) { return log.getIndex().getLastTime(); })
        .def("types", types)
        .def("counts", counts)
        .def("gaps", gaps)
        .def_prop_ro("paths", &LogFile::getPaths)
        .def("divide", &LogFile::divide);
    module.def("join_logs", join, nb::arg("files"), nb::arg("progress").none());

    nb::class_<Partition>(module, "Partition")
        .def("__init__", makePartition, nb::arg("begin"), nb::arg("end"), nb::arg("week"),
             nb::arg("tow"), nb::arg("time_before").none())
        .def_ro("begin", &Partition::begin)
        .def_ro("end", &Partition::end)
        .def_ro("time_before", &Partition::timeBefore)
        .def_ro("first", &Partition::first)
        .def_ro("last", &Partition::last)
        .def_ro("blocks", &Partition::blocks)
        .def_prop_ro("week", [](const Partition& part) { return part.context.weekCounter; })
        .def_prop_ro("tow", [](const Partition& part) { return part.context.lastTow; });

    module.def("parse_time", [](const std::string& text) { return parseTime("time", text); });
    module.def("utc_millis", [](uint64_t millis) { return utcMillis(millis); });
    module.def("leap_seconds_before", [](uint64_t day) { return leapSecondsBefore(day); });
}

} // namespace tqx::python
