#include "tqx/gnss/track/TrackText.h"
#include "tqx/gnss/track/Writers.h"
#include "tqx/log/text/NumberText.h"
#include "tqx/log/time/LeapSeconds.h"

#include <fmt/format.h>

#include <string>

namespace tqx
{

namespace
{

/// Quality in GGA and mode in RMC. NMEA 0183 has none for precise point positioning; its
/// ambiguities are real numbers like those of float solutions.
struct Quality {
    char number;
    char letter;
};

constexpr Quality qualities[] = {{'0', 'N'}, {'1', 'A'}, {'2', 'D'}, {'5', 'F'},
                                 {'4', 'R'}, {'5', 'F'}, {'6', 'E'}, {'7', 'M'}};

class NmeaTrack : public TrackWriter
{
public:
    explicit NmeaTrack(Buffer& out) : TrackWriter(out) {}

    void add(const Position& position) override;

private:
    void field(std::string_view text = {})
    {
        m_out.append(',');
        m_out.append(text);
    }
    void field(char character) { field(std::string_view(&character, 1)); }
    void number(double value, int decimals)
    {
        m_out.append(',');
        appendKnown(m_out, value, decimals);
    }
    void start(std::string_view kind);
    void finish();
    void place(const Position& position);
    void angle(double degrees, unsigned width, char positive, char negative);
    void addFix(const Position& position);
    void addMotion(const Position& position);
    void addDilutions(const Position& position);
    void addDate();

    size_t m_start = 0; ///< of the sentence in the buffer
    std::string m_time; ///< hhmmss.ss
    std::string m_utc;  ///< "2024-02-10T23:46:22.100Z"
};

void NmeaTrack::start(std::string_view kind)
{
    m_start = m_out.size();
    m_out.append("$GN");
    m_out.append(kind);
    field(m_time);
}

void NmeaTrack::finish()
{
    unsigned sum = 0;
    for (const char character : m_out.view().substr(m_start + 1))
        sum ^= static_cast<unsigned char>(character);
    m_out.append(fmt::format("*{:02X}\r\n", sum));
}

/// Degrees and minutes in one number. Minutes are rounded before they are divided: never 60.
void NmeaTrack::angle(double degrees, unsigned width, char positive, char negative)
{
    constexpr uint64_t perMinute = 10000000;
    const auto steps = static_cast<uint64_t>(std::llround(std::fabs(degrees) * 60 * perMinute));
    const uint64_t minutes = steps / perMinute;
    field(fmt::format("{:0{}}{:02}.{:07}", minutes / 60, width, minutes % 60, steps % perMinute));
    field(degrees < 0 ? negative : positive);
}

void NmeaTrack::place(const Position& position)
{
    if (position.fix == Fix::None) {
        m_out.append(",,,,");
        return;
    }
    angle(position.latitude, 2, 'N', 'S');
    angle(position.longitude, 3, 'E', 'W');
}

void NmeaTrack::addFix(const Position& position)
{
    start("GGA");
    place(position);
    field(qualities[static_cast<size_t>(position.fix)].number);
    field(position.satellites >= 0 ? fmt::format("{:02}", position.satellites) : "");
    number(position.hdop, 2);
    number(position.aboveGeoid(), 3);
    field('M');
    number(position.undulation, 3);
    field('M');
    number(position.correctionAge, 1);
    field(position.reference >= 0 ? fmt::format("{:04}", position.reference) : "");
    finish();
}

void NmeaTrack::addMotion(const Position& position)
{
    constexpr double knot = 1852.0 / 3600; // metres per second
    constexpr double slowest = 0.1;        // no course below this speed
    start("RMC");
    field(position.fix == Fix::None ? 'V' : 'A');
    place(position);
    const double speed = position.groundSpeed();
    number(speed / knot, 3);
    double course = notKnown;
    if (speed >= slowest)
        course = std::atan2(position.east, position.north) * 180 / std::acos(-1);
    number(course < 0 ? course + 360 : course, 2);
    field(m_utc.substr(8, 2) + m_utc.substr(5, 2) + m_utc.substr(2, 2));
    m_out.append(",,"); // magnetic variation
    field(qualities[static_cast<size_t>(position.fix)].letter);
    field('V'); // no navigational status is given
    finish();
}

/// The satellites used are not known.
void NmeaTrack::addDilutions(const Position& position)
{
    constexpr size_t satellites = 12;
    if (!std::isfinite(position.hdop))
        return;
    m_start = m_out.size();
    m_out.append("$GNGSA,A,");
    m_out.append(position.fix == Fix::None ? '1' : '3');
    m_out.append(std::string(satellites, ','));
    number(position.pdop, 2);
    number(position.hdop, 2);
    number(position.vdop, 2);
    finish();
}

void NmeaTrack::addDate()
{
    start("ZDA");
    field(std::string_view(m_utc).substr(8, 2));
    field(std::string_view(m_utc).substr(5, 2));
    field(std::string_view(m_utc).substr(0, 4));
    m_out.append(",00,00");
    finish();
}

void NmeaTrack::add(const Position& position)
{
    m_utc = utcText(position.time);
    m_time = m_utc.substr(11, 2) + m_utc.substr(14, 2) + m_utc.substr(17, 6);
    if (m_time.back() == '0')
        m_time.pop_back();
    addFix(position);
    addDilutions(position);
    addMotion(position);
    addDate();
}

} // namespace

std::unique_ptr<TrackWriter> makeNmeaTrack(Buffer& out)
{
    return std::make_unique<NmeaTrack>(out);
}

} // namespace tqx
