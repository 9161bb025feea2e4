#include "tqx/gnss/position/PositionBlocks.h"
#include "tqx/gnss/track/Segments.h"
#include "tqx/gnss/track/TrackText.h"
#include "tqx/gnss/track/Writers.h"
#include "tqx/log/text/JsonText.h"
#include "tqx/log/text/NumberText.h"
#include "tqx/log/time/LeapSeconds.h"

#include <string>
#include <vector>

namespace tqx
{

namespace
{

class GeoJsonTrack : public TrackWriter
{
public:
    GeoJsonTrack(Buffer& out, std::string_view name) : TrackWriter(out), m_name(name) {}

    void begin() override;
    void add(const Position& position) override;
    void end() override;

private:
    void key(std::string_view name)
    {
        m_out.append(",\"");
        m_out.append(name);
        m_out.append("\":");
    }
    void text(std::string_view name, std::string_view value);
    void number(std::string_view name, double value, int decimals);
    void beginFeature(std::string_view geometry);
    void addToLine(const Position& position, std::string_view coordinates);

    std::string m_name;
    bool m_isFirst = true;
    // The lines follow the points: each is kept as the text of its coordinates.
    struct Line {
        Buffer coordinates;
        uint64_t points = 0;
        GnssMillis first = 0;
        GnssMillis last = 0;
    };
    Segments m_segments;
    std::vector<Line> m_lines;
};

void GeoJsonTrack::begin()
{
    m_out.append("{\"type\":\"FeatureCollection\",\"name\":");
    json::appendString(m_out, m_name);
    m_out.append(",\"features\":[");
}

void GeoJsonTrack::text(std::string_view name, std::string_view value)
{
    if (value.empty())
        return;
    key(name);
    json::appendString(m_out, value);
}

void GeoJsonTrack::number(std::string_view name, double value, int decimals)
{
    if (!std::isfinite(value))
        return;
    key(name);
    appendKnown(m_out, value, decimals);
}

void GeoJsonTrack::beginFeature(std::string_view geometry)
{
    m_out.append(m_isFirst ? "\n" : ",\n");
    m_isFirst = false;
    m_out.append("{\"type\":\"Feature\",\"geometry\":{\"type\":\"");
    m_out.append(geometry);
    m_out.append("\",\"coordinates\":");
}

void GeoJsonTrack::addToLine(const Position& position, std::string_view coordinates)
{
    Line& line = m_lines.back();
    if (line.points++ == 0) {
        line.first = position.time;
    } else {
        line.coordinates.append(',');
    }
    line.coordinates.append(coordinates);
    line.last = position.time;
}

/// The lines of the track that have a length.
void GeoJsonTrack::end()
{
    for (const Line& line : m_lines) {
        if (line.points < 2)
            continue;
        beginFeature("LineString");
        m_out.append('[');
        m_out.append(line.coordinates.view());
        m_out.append("]},\"properties\":{\"utc\":");
        json::appendString(m_out, utcText(line.first));
        text("utc_end", utcText(line.last));
        number("positions", static_cast<double>(line.points), 0);
        m_out.append("}}");
    }
    m_out.append("\n]}\n");
}

void GeoJsonTrack::add(const Position& position)
{
    const bool goesOn = m_segments.goesOn(position);
    if (position.fix == Fix::None)
        return;
    beginFeature("Point");
    const size_t start = m_out.size();
    m_out.append('[');
    appendKnown(m_out, position.longitude, 9);
    m_out.append(',');
    appendKnown(m_out, position.latitude, 9);
    if (std::isfinite(position.height)) {
        m_out.append(',');
        appendKnown(m_out, position.height, 4);
    }
    m_out.append(']');
    if (!goesOn)
        m_lines.emplace_back();
    addToLine(position, m_out.view().substr(start));
    m_out.append("},\"properties\":{\"utc\":");
    json::appendString(m_out, utcText(position.time));
    text("gps", dateText(position.time));
    text("source", position.source->name);
    text("mode", position.mode);
    number("height_above_geoid", position.aboveGeoid(), 4);
    number("undulation", position.undulation, 4);
    text("accuracy_level", levelText(position.level));
    number("horizontal_accuracy", position.horizontalAccuracy, 4);
    number("vertical_accuracy", position.verticalAccuracy, 4);
    number("spatial_accuracy", position.spatialAccuracy, 4);
    if (position.satellites >= 0)
        number("satellites", position.satellites, 0);
    number("correction_age", position.correctionAge, 2);
    if (position.reference >= 0)
        number("reference", position.reference, 0);
    number("velocity_north", position.north, 4);
    number("velocity_east", position.east, 4);
    number("velocity_up", position.up, 4);
    number("heading", position.heading, 4);
    number("pitch", position.pitch, 4);
    number("roll", position.roll, 4);
    text("datum", position.datum);
    m_out.append("}}");
}

} // namespace

std::unique_ptr<TrackWriter> makeGeoJsonTrack(Buffer& out, std::string_view name)
{
    return std::make_unique<GeoJsonTrack>(out, name);
}

} // namespace tqx
