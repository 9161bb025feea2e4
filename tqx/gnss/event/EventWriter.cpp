#include "tqx/gnss/event/EventWriter.h"

#include "tqx/gnss/track/TrackText.h"
#include "tqx/log/text/CsvText.h"
#include "tqx/log/text/JsonText.h"
#include "tqx/log/time/LeapSeconds.h"

#include <fmt/format.h>

#include <string>

namespace tqx
{

namespace
{

std::string_view originText(Event::Origin origin)
{
    switch (origin) {
    case Event::Origin::Receiver:
        return "receiver";
    case Event::Origin::Interpolated:
        return "interpolated";
    case Event::Origin::None:
        break;
    }
    return "";
}

/// A time that ends with its milliseconds, or those and a Z, with nanoseconds.
std::string withNanoseconds(std::string text, const Event& event)
{
    const size_t end = text.back() == 'Z' ? text.size() - 1 : text.size();
    return text.insert(end, fmt::format("{:06}", event.nanoseconds));
}

} // namespace

void EventWriter::begin()
{
    if (m_format == EventFormat::GeoJson) {
        m_out.append("{\"type\":\"FeatureCollection\",\"features\":[");
    } else {
        m_out.append("WNc [week],TOW [second],GPS time,UTC,Input,Edge,Position,Mode,"
                     "Latitude [degree],Longitude [degree],Height above ellipsoid [meter],"
                     "Height above geoid [meter],Accuracy level,Horizontal accuracy [meter],"
                     "Vertical accuracy [meter],Spatial accuracy [meter],Vn [meterpersecond],"
                     "Ve [meterpersecond],Vu [meterpersecond],Attitude,Heading [degree],"
                     "Pitch [degree],Roll [degree],Datum\n");
    }
}

void EventWriter::addRow(const Event& event)
{
    const Position& position = event.position;
    const std::string time = withNanoseconds(weekText(event.time), event);
    const size_t colon = time.find(':');
    m_out.append(std::string_view(time).substr(0, colon));
    m_out.append(',');
    m_out.append(std::string_view(time).substr(colon + 1));
    const auto text = [this](std::string_view characters) {
        m_out.append(',');
        m_out.append(csv::cell(characters));
    };
    const auto number = [this](double value, int decimals) {
        m_out.append(',');
        appendKnown(m_out, value, decimals);
    };
    text(withNanoseconds(dateText(event.time), event));
    text(withNanoseconds(utcText(event.time), event));
    text(event.input);
    text(event.edge);
    text(originText(event.placeOrigin));
    text(position.mode);
    number(position.latitude, 10);
    number(position.longitude, 10);
    number(position.height, 4);
    number(position.aboveGeoid(), 4);
    text(levelText(position.level));
    number(position.horizontalAccuracy, 4);
    number(position.verticalAccuracy, 4);
    number(position.spatialAccuracy, 4);
    number(position.north, 4);
    number(position.east, 4);
    number(position.up, 4);
    text(originText(event.attitudeOrigin));
    number(position.heading, 4);
    number(position.pitch, 4);
    number(position.roll, 4);
    text(position.datum);
    m_out.append('\n');
}

void EventWriter::addFeature(const Event& event)
{
    const Position& position = event.position;
    m_out.append(m_isFirst ? "\n" : ",\n");
    m_isFirst = false;
    m_out.append("{\"type\":\"Feature\",\"geometry\":");
    if (event.placeOrigin == Event::Origin::None) {
        m_out.append("null");
    } else {
        m_out.append("{\"type\":\"Point\",\"coordinates\":[");
        appendKnown(m_out, position.longitude, 9);
        m_out.append(',');
        appendKnown(m_out, position.latitude, 9);
        if (std::isfinite(position.height)) {
            m_out.append(',');
            appendKnown(m_out, position.height, 4);
        }
        m_out.append("]}");
    }
    const auto text = [this](std::string_view name, std::string_view value) {
        if (value.empty())
            return;
        m_out.append(",\"");
        m_out.append(name);
        m_out.append("\":");
        json::appendString(m_out, value);
    };
    const auto number = [this](std::string_view name, double value) {
        if (!std::isfinite(value))
            return;
        m_out.append(",\"");
        m_out.append(name);
        m_out.append("\":");
        appendKnown(m_out, value, 4);
    };
    m_out.append(",\"properties\":{\"utc\":");
    json::appendString(m_out, withNanoseconds(utcText(event.time), event));
    text("gps", withNanoseconds(dateText(event.time), event));
    text("input", event.input);
    text("edge", event.edge);
    text("position", originText(event.placeOrigin));
    text("mode", position.mode);
    number("height_above_geoid", position.aboveGeoid());
    text("accuracy_level", levelText(position.level));
    number("horizontal_accuracy", position.horizontalAccuracy);
    number("vertical_accuracy", position.verticalAccuracy);
    number("spatial_accuracy", position.spatialAccuracy);
    text("attitude", originText(event.attitudeOrigin));
    number("heading", position.heading);
    number("pitch", position.pitch);
    number("roll", position.roll);
    text("datum", position.datum);
    m_out.append("}}");
}

void EventWriter::add(const Event& event)
{
    if (m_format == EventFormat::GeoJson) {
        addFeature(event);
    } else {
        addRow(event);
    }
}

void EventWriter::end()
{
    if (m_format == EventFormat::GeoJson)
        m_out.append("\n]}\n");
}

} // namespace tqx
