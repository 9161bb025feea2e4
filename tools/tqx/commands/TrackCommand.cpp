#include "commands/TrackCommand.h"

#include "io/Output.h"
#include "io/Target.h"
#include "io/ToolError.h"
#include "io/Words.h"
#include "output/TrackOutput.h"
#include "tqx/gnss/track/GeoPackage.h"
#include "tqx/gnss/track/TrackWriter.h"
#include "tqx/log/record/TypeNames.h"

#include <CLI/Validators.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <filesystem>

namespace tqx::tool
{

namespace
{

/// Those that are text, each at the place of its TrackFormat, and the database.
const std::vector<std::string> formats = {"csv", "gpx", "kml", "geojson", "nmea", "gpkg"};

std::string sourceList()
{
    std::string list;
    for (const PositionSource& source : positionSources())
        list += fmt::format("  {:<18}{}\n", source.name, source.describe);
    return list;
}

} // namespace

TrackCommand::TrackCommand(CLI::App& program)
    : Command(
          program, "track", "Write positions for maps and tables",
          "  tqx track log.tqx > positions.csv\n"
          "  tqx track --format gpx --interval 1 day1.tqx day2.tqx.gz -o days.gpx\n"
          "  tqx track --format gpkg --source 4007 log.tqx -o log.gpkg\n"
          "  tqx track --format nmea --live --source 4007 - < /dev/ttyUSB0\n"
          "\n"
          "Positions are those of one kind of block, --source; the kinds are, best first:\n" +
              sourceList() +
              "Without --source, this is the best one that covers at least nine tenths of the "
              "time\n"
              "that any of them covers; input that cannot be read twice, such as standard input, "
              "is\n"
              "judged by its first ten seconds.\n"
              "\n"
              "Heights: csv and gpkg have those above ellipsoid and geoid, geojson those above "
              "the\n"
              "ellipsoid as coordinates, gpx and kml those above the geoid where the block has "
              "its\n"
              "undulation. Accuracies are those of the block, and the level says of which kind:\n"
              "standard deviations (1 sigma; the horizontal one is the root of the sum of both\n"
              "variances) or 95 %. Cartesian coordinates are converted on WGS84. Epochs without a\n"
              "position are left out, except in nmea, where sentences say so. NMEA sentences are\n"
              "GGA, RMC and ZDA, and GSA (without satellites) where the log has dilutions of\n"
              "precision; with seven decimals of minutes they may be longer than 82 characters.\n"
              "Precise point positioning has quality 5, because NMEA has no number for it.\n")
{
    m_streams.addInputs(m_app);
    m_streams.addDamageReport(m_app);
    m_streams.addConditions(m_app);
    m_app.add_option("--format", m_format, "Format of the track")
        ->transform(CLI::IsMember(formats, CLI::ignore_case).description(""))
        ->type_name("csv|gpx|kml|geojson|gpkg|nmea")
        ->capture_default_str();
    m_app
        .add_option("--source", m_source, "Kind of block to take positions from, by name or number")
        ->type_name("TYPE");
    m_app.add_option("-o,--output", m_target, "File to write instead of standard output")
        ->type_name("FILE");
}

/// Null when it is to be decided while reading.
const PositionSource* TrackCommand::findSource()
{
    if (!m_source.empty()) {
        const PositionSource* const source = positionSource(m_source);
        if (source)
            return source;
        std::vector<std::string_view> names;
        for (const PositionSource& each : positionSources())
            names.emplace_back(each.name);
        throw ToolError("track: " + unknownName("source of positions", m_source, names));
    }
    if (!m_streams.canLookAhead())
        return nullptr;
    RecordDecoder decoder;
    m_streams.lookAhead([&](BlockStream&, const Block& block) {
        Position position;
        if (positionSource(block.getNumber()) && decoder.decode(block) > 0 &&
            readPosition(decoder.getRecord(), position))
            m_choice.take(position);
    });
    return m_choice.best();
}

std::string TrackCommand::trackName() const
{
    const std::string name = std::filesystem::path(m_streams.getFiles().front()).stem().string();
    return name == "-" ? "track" : name;
}

/// Reports which of several sources was chosen, and what is not in the track.
void TrackCommand::say(const TrackOutput& track) const
{
    const PositionSource* const chosen = track.getSource();
    const SourceChoice& choice = m_choice.best() ? m_choice : track.getChoice();
    std::string others;
    for (const PositionSource* source : choice.found()) {
        if (source != chosen)
            others += (others.empty() ? "" : ", ") + std::string(source->name);
    }
    if (chosen && !others.empty()) {
        words::say(fmt::format("positions of {} ({}); there are also those of {}, see --source",
                               chosen->name, chosen->describe, others));
    }
    if (track.getMissing() != 0) {
        words::say(fmt::format("{} {} without a position", track.getMissing(),
                               track.getMissing() == 1 ? "epoch" : "epochs"));
    }
}

ExitStatus TrackCommand::write(TrackOutput& track, Sink& output)
{
    const ExitStatus status = m_streams.read(track, output);
    if (!m_streams.isQuiet())
        say(track);
    if (track.getCount() == 0 && status == ExitStatus::Done) {
        words::say("no position in the blocks selected");
        return ExitStatus::Failed;
    }
    return status;
}

ExitStatus TrackCommand::run()
{
    m_streams.checkBefore(m_target);
    if (m_format == "gpkg" && m_target == "-")
        throw ToolError("track: --format gpkg is a file, name it with --output");
    const PositionSource* const source = findSource();
    const bool isNmea = m_format == "nmea";
    if (m_format == "gpkg") {
        GeoPackage package(m_target, "positions");
        TrackOutput track([&package](const Position& position) { package.add(position); }, source,
                          m_streams.getLimit(), false);
        NoSink sink;
        const ExitStatus status = write(track, sink);
        package.finish();
        return status;
    }
    Output output(m_target);
    const auto place = std::find(formats.begin(), formats.end(), m_format) - formats.begin();
    const auto writer =
        makeTrackWriter(static_cast<TrackFormat>(place), output.getBuffer(), trackName());
    TrackOutput track([&writer](const Position& position) { writer->add(position); }, source,
                      m_streams.getLimit(), isNmea);
    writer->begin();
    const ExitStatus status = write(track, output);
    writer->end();
    output.flush();
    return status;
}

} // namespace tqx::tool
