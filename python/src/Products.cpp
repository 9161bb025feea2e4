#include "Products.h"
#include "ArrowStream.h"
#include "Bindings.h"
#include "EpochParts.h"
#include "LogReader.h"
#include "PartStream.h"
#include "ProductTable.h"
#include "tqx/gnss/navigation/NavigationStore.h"
#include "tqx/gnss/observation/EpochSelection.h"
#include "tqx/gnss/observation/ObservationGatherer.h"
#include "tqx/gnss/position/PositionBlocks.h"
#include "tqx/gnss/position/SourceChoice.h"
#include "tqx/log/DataError.h"
#include "tqx/log/record/TypeNames.h"

#include <nanobind/stl/optional.h>
#include <nanobind/stl/pair.h>
#include <nanobind/stl/shared_ptr.h>
#include <nanobind/stl/string.h>
#include <nanobind/stl/vector.h>

#include <algorithm>
#include <array>
#include <functional>
#include <string_view>
#include <utility>

namespace tqx::python
{

namespace nb = nanobind;

namespace
{

using Logs = std::vector<std::shared_ptr<LogFile>>;
using Kind = ProductTable::Kind;
constexpr size_t batchRows = 65536;

struct ProductColumn {
    Kind kind;
    const char* name;
    const char* unit = "";
};

void addAll(ProductTable& table, const std::vector<ProductColumn>& columns)
{
    for (const ProductColumn& column : columns)
        table.add(column.kind, column.name, column.unit);
}

/// All possible satellites and signals of observations, and their places.
class ObservationNames
{
public:
    ObservationNames()
    {
        constexpr unsigned highest = 255;
        m_satellitePlaces.fill(0);
        m_signalPlaces.fill(0);
        for (unsigned svid = 0; svid <= highest; ++svid) {
            if (const auto satellite = satelliteOf(static_cast<uint8_t>(svid)))
                add(*satellite);
        }
        for (const char system : std::string_view(systemLetters)) {
            for (unsigned signal = 0; signal <= highest; ++signal) {
                for (const bool isE6B : {false, true})
                    add(signalCode(system, static_cast<uint8_t>(signal), isE6B));
            }
        }
    }

    const std::vector<std::string>& getSatellites() const { return m_satellites; }
    const std::vector<std::string>& getSignals() const { return m_signals; }

    int16_t placeOf(const SatelliteId& satellite) const
    {
        return m_satellitePlaces[systemIndex(satellite.system) * 256 + satellite.number];
    }
    int16_t placeOf(const SignalCode& code) const { return m_signalPlaces[tqx::placeOf(code)]; }

private:
    void add(const SatelliteId& satellite)
    {
        int16_t& place = m_satellitePlaces[systemIndex(satellite.system) * 256 + satellite.number];
        if (place != 0 || (!m_satellites.empty() && m_satellites[0] == satellite.text()))
            return;
        place = static_cast<int16_t>(m_satellites.size());
        m_satellites.push_back(satellite.text());
    }

    void add(const std::optional<SignalCode>& code)
    {
        if (!code)
            return;
        const std::string text = {code->band, code->attribute};
        if (std::find(m_signals.begin(), m_signals.end(), text) != m_signals.end())
            return;
        m_signalPlaces[tqx::placeOf(*code)] = static_cast<int16_t>(m_signals.size());
        m_signals.push_back(text);
    }

    std::vector<std::string> m_satellites;
    std::vector<std::string> m_signals;
    std::array<int16_t, systemCount * 256> m_satellitePlaces;
    std::array<int16_t, 260> m_signalPlaces;
};

const ObservationNames& observationNames()
{
    static const ObservationNames names;
    return names;
}

void addObservationColumns(ProductTable& table)
{
    table.add(Kind::Time, "time");
    table.addNames("satellite", observationNames().getSatellites());
    table.addNames("signal", observationNames().getSignals());
    addAll(table, {{Kind::Small, "antenna"},
                   {Kind::Real, "range", "meter"},
                   {Kind::Real, "phase", "cycle"},
                   {Kind::Real, "doppler", "hertz"},
                   {Kind::Real, "cn0", "decibelhertz"},
                   {Kind::Real, "lock_time", "second"},
                   {Kind::Flag, "lost"},
                   {Kind::Flag, "half_cycle"},
                   {Kind::Flag, "smoothed"},
                   {Kind::Small, "channel"},
                   {Kind::Real, "range_deviation", "meter"},
                   {Kind::Real, "phase_deviation", "cycle"},
                   {Kind::Real, "multipath", "meter"},
                   {Kind::Real, "smoothing", "meter"},
                   {Kind::Real, "clock_bias", "second"}});
}

void addRows(ProductTable& table, const ObservationEpoch& epoch)
{
    const ObservationNames& names = observationNames();
    const std::vector<Observation>& all = epoch.observations;
    const size_t count = all.size();
    size_t column = 0;
    const auto reals = [&](double Observation::*member) {
        table.reals(column++, count, [&](size_t i) { return all[i].*member; });
    };
    table.times(column++, count, epoch.time);
    table.smalls(column++, count, [&](size_t i) { return names.placeOf(all[i].satellite); });
    table.smalls(column++, count, [&](size_t i) { return names.placeOf(all[i].code); });
    table.smalls(column++, count, [&](size_t i) { return int16_t{all[i].antenna}; });
    for (const auto member : {&Observation::range, &Observation::phase, &Observation::doppler,
                              &Observation::cn0, &Observation::lockTime})
        reals(member);
    for (const auto member :
         {&Observation::isLost, &Observation::isHalfCycle, &Observation::isSmoothed})
        table.flags(column++, count, [&](size_t i) { return all[i].*member; });
    for (const Observation& observation : all)
        table.small(column, observation.channel, isFdma(observation.signal));
    ++column;
    for (const auto member : {&Observation::rangeDeviation, &Observation::phaseDeviation,
                              &Observation::multipath, &Observation::smoothing})
        reals(member);
    table.reals(column++, count, [&](size_t) { return epoch.clockBias; });
    table.endRows(count);
}

/// Gets the next block that has to do with observations and decodes; false at the end.
using NextDecoded = std::function<bool(DecodedBlock& decoded)>;

/// Those of whole logs, by their indexes.
NextDecoded measurementsOf(Logs logs)
{
    auto reader =
        std::make_shared<LogReader>(std::move(logs), numbersOf(ObservationGatherer::wants));
    return [reader](DecodedBlock& decoded) {
        for (Block block = {}; reader->next(block);) {
            decoded = reader->decode(block);
            if (decoded.record)
                return true;
        }
        return false;
    };
}

/// Those of pieces of logs that follow each other, without an index.
class PieceReader
{
public:
    explicit PieceReader(std::vector<EpochPiece> pieces) : m_pieces(std::move(pieces)) {}

    bool next(DecodedBlock& decoded)
    {
        for (; m_current < m_pieces.size(); ++m_current, m_stream.reset()) {
            if (!m_stream)
                open(m_pieces[m_current]);
            for (Block block = {}; m_stream->next(block);) {
                if (!ObservationGatherer::wants(block.getNumber()) || m_decoder.decode(block) <= 0)
                    continue;
                decoded = m_decoder.getDecoded();
                return true;
            }
        }
        return false;
    }

private:
    void open(const EpochPiece& piece)
    {
        Partition part;
        part.begin = piece.begin;
        part.end = piece.end;
        m_stream = std::make_unique<PartStream>(piece.paths, part, Schema());
    }

    std::vector<EpochPiece> m_pieces;
    size_t m_current = 0;
    std::unique_ptr<PartStream> m_stream;
    RecordDecoder m_decoder;
};

/// Observations on their way into a table.
class ObservationRows
{
public:
    ObservationRows(NextDecoded next, EpochSelection selection, bool isNanMissing)
        : m_next(std::move(next)), m_selection(std::move(selection)),
          m_gatherer([this](ObservationEpoch& epoch) { return take(epoch); })
    {
        addObservationColumns(m_table);
        if (isNanMissing)
            m_table.setNanIsMissing();
    }

    bool next(ArrowArray& out)
    {
        while (!m_ended && m_table.getRows() < batchRows) {
            DecodedBlock decoded = {};
            if (m_next(decoded)) {
                m_gatherer.take(decoded);
            } else {
                m_gatherer.finish();
                m_ended = true;
            }
        }
        if (m_table.getRows() == 0)
            return false;
        m_table.finish(out);
        return true;
    }

private:
    bool take(ObservationEpoch& epoch)
    {
        if (!m_selection.isInTime(epoch.time))
            return true;
        if (!m_selection.isOnInterval(epoch.time))
            return false;
        m_selection.reduce(epoch);
        addRows(m_table, epoch);
        return true;
    }

    NextDecoded m_next;
    EpochSelection m_selection;
    ProductTable m_table;
    ObservationGatherer m_gatherer;
    bool m_ended = false;
};

template<typename Rows>
ArrowStream streamOfRows(const char* description, void (*addColumns)(ProductTable&),
                         std::shared_ptr<Rows> rows)
{
    auto empty = std::make_shared<ProductTable>();
    addColumns(*empty);
    return {{[empty, description](ArrowSchema& out) { empty->exportSchema(description, out); },
             [rows](ArrowArray& out) { return rows->next(out); }},
            std::make_shared<TableCounts>()};
}

ArrowStream observations(Logs logs, std::optional<GnssMillis> from, std::optional<GnssMillis> to,
                         uint64_t interval, std::vector<std::string> satellites,
                         std::vector<std::string> signals, bool isNanMissing)
{
    EpochSelection selection;
    selection.from = from;
    selection.to = to;
    selection.interval = interval;
    selection.satellites = std::move(satellites);
    selection.signals = std::move(signals);
    return streamOfRows("observations", addObservationColumns,
                        std::make_shared<ObservationRows>(measurementsOf(std::move(logs)),
                                                          std::move(selection), isNanMissing));
}

/// The observations of a part of a log.
ArrowStream partObservations(std::vector<EpochPiece> pieces, std::optional<GnssMillis> from,
                             std::optional<GnssMillis> to)
{
    EpochSelection selection;
    selection.from = from;
    selection.to = to;
    auto reader = std::make_shared<PieceReader>(std::move(pieces));
    return streamOfRows("observations", addObservationColumns,
                        std::make_shared<ObservationRows>(
                            [reader](DecodedBlock& decoded) { return reader->next(decoded); },
                            std::move(selection), false));
}

std::vector<EpochPart> divide(const Logs& logs, uint64_t bytes, GnssMillis lead)
{
    const nb::gil_scoped_release unlocked;
    return divideEpochs(logs, bytes, lead);
}

void bindEpochParts(nb::module_& module)
{
    nb::class_<EpochPiece>(module, "EpochPiece")
        .def(
            "__init__",
            [](EpochPiece* piece, std::vector<std::string> paths, uint64_t begin, uint64_t end) {
                new (piece) EpochPiece{std::move(paths), begin, end};
            },
            nb::arg("paths"), nb::arg("begin"), nb::arg("end"))
        .def_ro("paths", &EpochPiece::paths)
        .def_ro("begin", &EpochPiece::begin)
        .def_ro("end", &EpochPiece::end);
    nb::class_<EpochPart>(module, "EpochPart")
        .def_ro("pieces", &EpochPart::pieces)
        .def_ro("first_epoch", &EpochPart::from)
        .def_ro("end_epoch", &EpochPart::to)
        .def_ro("bytes", &EpochPart::bytes);
    module.def("divide_epochs", divide, nb::arg("logs"), nb::arg("bytes"), nb::arg("lead"));
    module.def("part_observations", partObservations, nb::arg("pieces"), nb::arg("start").none(),
               nb::arg("end").none());
}

void addPositionColumns(ProductTable& table)
{
    addAll(table, {
                      {Kind::Time, "time"},
                      {Kind::Time, "utc"},
                      {Kind::Text, "source"},
                      {Kind::Text, "fix"},
                      {Kind::Text, "mode"},
                      {Kind::Real, "latitude", "degree"},
                      {Kind::Real, "longitude", "degree"},
                      {Kind::Real, "height", "meter"},
                      {Kind::Real, "undulation", "meter"},
                      {Kind::Real, "horizontal_accuracy", "meter"},
                      {Kind::Real, "vertical_accuracy", "meter"},
                      {Kind::Text, "accuracy_level"},
                      {Kind::Small, "satellites"},
                      {Kind::Real, "correction_age", "second"},
                      {Kind::Real, "north", "meterpersecond"},
                      {Kind::Real, "east", "meterpersecond"},
                      {Kind::Real, "up", "meterpersecond"},
                      {Kind::Real, "heading", "degree"},
                      {Kind::Real, "pitch", "degree"},
                      {Kind::Real, "roll", "degree"},
                      {Kind::Text, "datum"},
                  });
}

const char* nameOf(Fix fix)
{
    static constexpr std::array<const char*, 8> names = {
        "", "standalone", "differential", "rtk_float", "rtk_fixed", "ppp", "estimated", "manual"};
    return names[static_cast<size_t>(fix)];
}

const char* nameOf(AccuracyLevel level)
{
    return level == AccuracyLevel::None ? "" : level == AccuracyLevel::Sigma ? "1 sigma" : "95 %";
}

/// Positions of one source on their way into a table; epochs without one are left out.
class PositionRows
{
public:
    PositionRows(Logs logs, const PositionSource& source, std::optional<GnssMillis> from,
                 std::optional<GnssMillis> to)
        : m_reader(std::move(logs), {source.number}, from, to)
    {
        addPositionColumns(m_table);
    }

    bool next(ArrowArray& out)
    {
        Position position;
        for (Block block = {}; m_table.getRows() < batchRows && m_reader.next(block);) {
            const DecodedBlock decoded = m_reader.decode(block);
            if (decoded.record && readPosition(decoded.record, position) &&
                position.fix != Fix::None)
                add(position);
        }
        if (m_table.getRows() == 0)
            return false;
        m_table.finish(out);
        return true;
    }

private:
    void add(const Position& p)
    {
        size_t column = 0;
        m_table.time(column++, p.time);
        m_table.utc(column++, p.time);
        m_table.text(column++, p.source->name);
        m_table.text(column++, nameOf(p.fix));
        m_table.text(column++, p.mode);
        for (const double value : {p.latitude, p.longitude, p.height, p.undulation,
                                   p.horizontalAccuracy, p.verticalAccuracy})
            m_table.real(column++, value);
        m_table.text(column++, nameOf(p.level));
        m_table.small(column++, p.satellites, p.satellites >= 0);
        for (const double value :
             {p.correctionAge, p.north, p.east, p.up, p.heading, p.pitch, p.roll})
            m_table.real(column++, value);
        m_table.text(column++, p.datum);
        m_table.endRow();
    }

    LogReader m_reader;
    ProductTable m_table;
};

} // namespace

const PositionSource* findPositionSource(const Logs& logs, const std::string& name)
{
    if (!name.empty()) {
        const PositionSource* const source = positionSource(std::string_view(name));
        if (source)
            return source;
        std::vector<std::string_view> names;
        for (const PositionSource& each : positionSources())
            names.emplace_back(each.name);
        throw DataError(unknownName("source of positions", name, names));
    }
    SourceChoice choice;
    LogReader reader(logs, numbersOf([](uint16_t n) { return positionSource(n) != nullptr; }));
    Position position;
    for (Block block = {}; reader.next(block);) {
        const DecodedBlock decoded = reader.decode(block);
        if (decoded.record && readPosition(decoded.record, position))
            choice.take(position);
    }
    return choice.best();
}

namespace
{

ArrowStream positions(const Logs& logs, const std::string& name, std::optional<GnssMillis> from,
                      std::optional<GnssMillis> to)
{
    const nb::gil_scoped_release unlocked;
    const PositionSource* source = findPositionSource(logs, name);
    if (!source)
        source = &positionSources().front();
    return streamOfRows("positions", addPositionColumns,
                        std::make_shared<PositionRows>(logs, *source, from, to));
}

ArrowStream ephemerides(const Logs& logs, std::optional<GnssMillis> from,
                        std::optional<GnssMillis> to)
{
    NavigationStore store;
    {
        const nb::gil_scoped_release unlocked;
        LogReader reader(logs, numbersOf(NavigationStore::wants), from, to);
        for (Block block = {}; reader.next(block);) {
            const DecodedBlock decoded = reader.decode(block);
            if (decoded.record)
                store.take(decoded);
        }
    }
    std::vector<ProductColumn> columns = {{Kind::Time, "time"},
                                          {Kind::Text, "satellite"},
                                          {Kind::Text, "message"},
                                          {Kind::Time, "reference"}};
    for (const EphemerisParameter& parameter : ephemerisParameters())
        columns.push_back({Kind::Real, parameter.name, parameter.unit});
    auto table = std::make_shared<ProductTable>();
    addAll(*table, columns);
    for (const Ephemeris& ephemeris : store.getEphemerides()) {
        size_t column = 0;
        table->time(column++, ephemeris.received);
        table->text(column++, ephemeris.satellite.text());
        table->text(column++, tqx::nameOf(ephemeris.message));
        table->time(column++, ephemeris.reference);
        for (const EphemerisParameter& parameter : ephemerisParameters())
            table->real(column++, ephemeris.*parameter.member);
        table->endRow();
    }
    return {{[table](ArrowSchema& out) { table->exportSchema("ephemerides", out); },
             [table](ArrowArray& out) {
                 if (table->getRows() == 0)
                     return false;
                 table->finish(out);
                 return true;
             }},
            std::make_shared<TableCounts>()};
}

} // namespace

void bindProducts(nb::module_& module)
{
    bindEpochParts(module);
    module.def("observations", observations, nb::arg("logs"), nb::arg("start").none(),
               nb::arg("end").none(), nb::arg("interval"), nb::arg("satellites"),
               nb::arg("signals"), nb::arg("nan_is_missing") = false);
    module.def("positions", positions, nb::arg("logs"), nb::arg("source"), nb::arg("start").none(),
               nb::arg("end").none());
    module.def("ephemerides", ephemerides, nb::arg("logs"), nb::arg("start").none(),
               nb::arg("end").none());
}

} // namespace tqx::python
