#include "tqx/gnss/position/PositionBlocks.h"
#include "tqx/gnss/track/TrackText.h"
#include "tqx/gnss/track/Writers.h"
#include "tqx/log/text/CsvText.h"
#include "tqx/log/text/NumberText.h"
#include "tqx/log/time/LeapSeconds.h"

namespace tqx
{

namespace
{

constexpr std::string_view heading =
    "WNc [week],TOW [second],GPS time,UTC,Source,Mode,Latitude [degree],Longitude [degree],"
    "Height above ellipsoid [meter],Height above geoid [meter],Undulation [meter],"
    "Accuracy level,Horizontal accuracy [meter],Vertical accuracy [meter],"
    "Spatial accuracy [meter],NrSV,Correction age [second],ReferenceID,Vn [meterpersecond],"
    "Ve [meterpersecond],Vu [meterpersecond],Heading [degree],Pitch [degree],Roll [degree],"
    "Datum\n";

class CsvTrack : public TrackWriter
{
public:
    explicit CsvTrack(Buffer& out) : TrackWriter(out) {}

    void begin() override { m_out.append(heading); }
    void add(const Position& position) override;

private:
    void number(double value, int decimals)
    {
        m_out.append(',');
        appendKnown(m_out, value, decimals);
    }
    void integer(int value)
    {
        m_out.append(',');
        if (value >= 0)
            number::appendUnsigned(m_out, static_cast<uint64_t>(value));
    }
    void text(std::string_view characters)
    {
        m_out.append(',');
        m_out.append(csv::cell(characters));
    }
};

void CsvTrack::add(const Position& position)
{
    if (position.fix == Fix::None)
        return;
    const std::string time = weekText(position.time);
    const size_t colon = time.find(':');
    m_out.append(std::string_view(time).substr(0, colon));
    m_out.append(',');
    m_out.append(std::string_view(time).substr(colon + 1));
    text(dateText(position.time));
    text(utcText(position.time));
    text(position.source->name);
    text(position.mode);
    number(position.latitude, 10);
    number(position.longitude, 10);
    number(position.height, 4);
    number(position.aboveGeoid(), 4);
    number(position.undulation, 4);
    text(levelText(position.level));
    number(position.horizontalAccuracy, 4);
    number(position.verticalAccuracy, 4);
    number(position.spatialAccuracy, 4);
    integer(position.satellites);
    number(position.correctionAge, 2);
    integer(position.reference);
    number(position.north, 4);
    number(position.east, 4);
    number(position.up, 4);
    number(position.heading, 4);
    number(position.pitch, 4);
    number(position.roll, 4);
    text(position.datum);
    m_out.append('\n');
}

} // namespace

std::unique_ptr<TrackWriter> makeCsvTrack(Buffer& out)
{
    return std::make_unique<CsvTrack>(out);
}

} // namespace tqx
