#include "tqx/gnss/track/Segments.h"
#include "tqx/gnss/track/TrackText.h"
#include "tqx/gnss/track/Writers.h"
#include "tqx/log/text/NumberText.h"

#include <string>

namespace tqx
{

namespace
{

class GpxTrack : public TrackWriter
{
public:
    GpxTrack(Buffer& out, std::string_view name) : TrackWriter(out), m_name(name) {}

    void begin() override;
    void add(const Position& position) override;
    void end() override;

private:
    void element(std::string_view name, double value, int decimals);

    std::string m_name;
    Segments m_segments;
    bool m_isOpen = false; ///< a segment
};

void GpxTrack::begin()
{
    m_out.append("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                 "<gpx version=\"1.1\" creator=\"tqx\" xmlns=\"http://www.topografix.com/GPX/1/1\" "
                 "xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
                 "xsi:schemaLocation=\"http://www.topografix.com/GPX/1/1 "
                 "http://www.topografix.com/GPX/1/1/gpx.xsd\">\n<trk>\n<name>");
    appendXml(m_out, m_name);
    m_out.append("</name>\n");
}

void GpxTrack::element(std::string_view name, double value, int decimals)
{
    if (!std::isfinite(value))
        return;
    m_out.append('<');
    m_out.append(name);
    m_out.append('>');
    appendKnown(m_out, value, decimals);
    m_out.append("</");
    m_out.append(name);
    m_out.append('>');
}

/// Words of the format; it has none for real-time kinematics.
std::string_view fixText(const Position& position)
{
    const std::string_view plain = std::isfinite(position.height) ? "3d" : "2d";
    return position.fix == Fix::Differential || position.fix == Fix::RtkFloat ||
                   position.fix == Fix::RtkFixed || position.fix == Fix::Ppp
               ? "dgps"
               : plain;
}

/// Elements of a point come in the order of the schema.
void GpxTrack::add(const Position& position)
{
    const bool goesOn = m_segments.goesOn(position);
    if (m_isOpen && !goesOn) {
        m_out.append("</trkseg>\n");
        m_isOpen = false;
    }
    if (position.fix == Fix::None)
        return;
    if (!m_isOpen)
        m_out.append("<trkseg>\n");
    m_isOpen = true;
    m_out.append("<trkpt lat=\"");
    appendKnown(m_out, position.latitude, 9);
    m_out.append("\" lon=\"");
    // 180 degrees are -180 here.
    appendKnown(m_out, position.longitude >= 180 ? position.longitude - 360 : position.longitude,
                9);
    m_out.append("\">");
    const double elevation = position.aboveGeoid();
    element("ele", std::isfinite(elevation) ? elevation : position.height, 4);
    m_out.append("<time>");
    m_out.append(xmlTime(position.time));
    m_out.append("</time>");
    element("geoidheight", position.undulation, 3);
    if (!position.mode.empty()) {
        m_out.append("<desc>");
        appendXml(m_out, position.mode);
        m_out.append("</desc>");
    }
    m_out.append("<fix>");
    m_out.append(fixText(position));
    m_out.append("</fix>");
    if (position.satellites >= 0)
        element("sat", position.satellites, 0);
    element("ageofdgpsdata", position.correctionAge, 2);
    if (position.reference >= 0 && position.reference <= 1023)
        element("dgpsid", position.reference, 0);
    m_out.append("</trkpt>\n");
}

void GpxTrack::end()
{
    if (m_isOpen)
        m_out.append("</trkseg>\n");
    m_out.append("</trk>\n</gpx>\n");
}

} // namespace

std::unique_ptr<TrackWriter> makeGpxTrack(Buffer& out, std::string_view name)
{
    return std::make_unique<GpxTrack>(out, name);
}

} // namespace tqx
