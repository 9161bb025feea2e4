#include "tqx/gnss/track/Segments.h"
#include "tqx/gnss/track/TrackText.h"
#include "tqx/gnss/track/Writers.h"

#include <string>

namespace tqx
{

namespace
{

struct Style {
    std::string_view name;
    std::string_view colour; ///< opacity, blue, green, red
};

constexpr Style styles[] = {
    {"none", "ff000000"},      {"standalone", "ff0000ff"}, {"differential", "ff00a5ff"},
    {"rtk-float", "ff00ffff"}, {"rtk-fixed", "ff00c000"},  {"ppp", "ffff8000"},
    {"estimated", "ffff00ff"}, {"manual", "ff808080"},
};

class KmlTrack : public TrackWriter
{
public:
    KmlTrack(Buffer& out, std::string_view name) : TrackWriter(out), m_name(name) {}

    void begin() override;
    void add(const Position& position) override;
    void end() override;

private:
    void openPlacemark(const Position& position);
    void appendTuple(const Position& position);
    void beginLine();
    void endLine();

    std::string m_name;
    Segments m_segments;
    Position m_last;       ///< of the stretch
    unsigned m_points = 0; ///< points in the stretch; the first one is written with the second
};

void KmlTrack::begin()
{
    m_out.append("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                 "<kml xmlns=\"http://www.opengis.net/kml/2.2\">\n<Document>\n<name>");
    appendXml(m_out, m_name);
    m_out.append("</name>\n");
    for (const Style& style : styles) {
        m_out.append("<Style id=\"");
        m_out.append(style.name);
        m_out.append("\"><LineStyle><color>");
        m_out.append(style.colour);
        m_out.append("</color><width>3</width></LineStyle></Style>\n");
    }
}

void KmlTrack::openPlacemark(const Position& position)
{
    m_out.append("<Placemark><name>");
    appendXml(m_out, position.mode);
    m_out.append(" from ");
    m_out.append(xmlTime(position.time));
    m_out.append("</name><styleUrl>#");
    m_out.append(styles[static_cast<size_t>(position.fix)].name);
    m_out.append("</styleUrl>");
}

std::string_view altitudeMode(const Position& position)
{
    return std::isfinite(position.aboveGeoid()) ? "<altitudeMode>absolute</altitudeMode>"
                                                : "<altitudeMode>clampToGround</altitudeMode>";
}

void KmlTrack::appendTuple(const Position& position)
{
    appendKnown(m_out, position.longitude, 9);
    m_out.append(',');
    appendKnown(m_out, position.latitude, 9);
    if (std::isfinite(position.aboveGeoid())) {
        m_out.append(',');
        appendKnown(m_out, position.aboveGeoid(), 4);
    }
}

/// Writes the first point of the stretch, now that there is a second.
void KmlTrack::beginLine()
{
    openPlacemark(m_last);
    m_out.append("<LineString><tessellate>1</tessellate>");
    m_out.append(altitudeMode(m_last));
    m_out.append("<coordinates>\n");
    appendTuple(m_last);
    m_out.append('\n');
}

void KmlTrack::endLine()
{
    if (m_points == 1) { // no line
        openPlacemark(m_last);
        m_out.append("<Point>");
        m_out.append(altitudeMode(m_last));
        m_out.append("<coordinates>");
        appendTuple(m_last);
        m_out.append("</coordinates></Point></Placemark>\n");
    } else if (m_points > 1) {
        m_out.append("</coordinates></LineString></Placemark>\n");
    }
    m_points = 0;
}

void KmlTrack::add(const Position& position)
{
    const bool goesOn = m_segments.goesOn(position);
    if (!goesOn || std::isfinite(position.aboveGeoid()) != std::isfinite(m_last.aboveGeoid()))
        endLine();
    if (position.fix == Fix::None)
        return;
    if (m_points == 1)
        beginLine();
    if (m_points != 0) {
        appendTuple(position);
        m_out.append('\n');
        ++m_points;
    }
    // A line of another colour begins where the one before ends.
    if (m_points != 0 && position.fix != m_last.fix)
        endLine();
    if (m_points == 0)
        m_points = 1;
    m_last = position;
}

void KmlTrack::end()
{
    endLine();
    m_out.append("</Document>\n</kml>\n");
}

} // namespace

std::unique_ptr<TrackWriter> makeKmlTrack(Buffer& out, std::string_view name)
{
    return std::make_unique<KmlTrack>(out, name);
}

} // namespace tqx
