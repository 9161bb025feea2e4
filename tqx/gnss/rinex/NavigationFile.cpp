#include "tqx/gnss/rinex/NavigationFile.h"

#include "tqx/gnss/rinex/EphemerisLayout.h"
#include "tqx/gnss/rinex/HeaderText.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <string_view>

namespace tqx
{

using rinex::appendHeaderLine;
using rinex::appendScientific;
using rinex::field;
using rinex::plain;

namespace
{

/// Offsets against UTC, and the laboratory that keeps it.
struct Laboratory {
    std::string_view kind;
    const char* name;
    unsigned number; ///< in files of version 3
};

constexpr Laboratory laboratories[] = {
    {"GPUT", "UTC(USNO)", 2}, {"GLUT", "UTC(SU)", 3}, {"BDUT", "UTC(NTSC)", 7}};

/// The letter of the system to whose time an offset belongs.
char systemOf(const TimeOffset& offset)
{
    switch (offset.kind[1]) {
    case 'P':
        return 'G';
    case 'L':
        return 'R';
    case 'A':
        return 'E';
    default:
        return 'C';
    }
}

/// Messages that carry parameters of a whole system.
const char* messageOf(char system)
{
    switch (system) {
    case 'G':
        return "LNAV";
    case 'E':
        return "IFNV";
    case 'C':
        return "D1D2";
    default:
        return "FDMA";
    }
}

std::string timeText(GnssMillis time)
{
    const rinex::CivilTime civil(time);
    return fmt::format("{:04} {:02} {:02} {:02} {:02} {:02}", civil.date.year, civil.date.month,
                       civil.date.day, civil.hour, civil.minute, static_cast<int>(civil.second));
}

void appendHead(Buffer& out, const RinexOptions& options)
{
    const bool isV3 = options.version == RinexVersion::V305;
    appendHeaderLine(out,
                     field(isV3 ? "     3.05" : "     4.02", 20) +
                         field(isV3 ? "N: GNSS NAV DATA" : "NAVIGATION DATA", 20) +
                         (isV3 ? "M: MIXED" : "M"),
                     "RINEX VERSION / TYPE");
    appendHeaderLine(out,
                     field(plain(options.program), 20) + field(plain(options.runBy), 20) +
                         field(options.date, 20),
                     "PGM / RUN BY / DATE");
}

void appendIonosphericCorrection(Buffer& out, const Ionosphere& data)
{
    const auto line = [&](const char* name, unsigned first, unsigned count) {
        std::string text = field(name, 5);
        for (unsigned i = 0; i < 4; ++i)
            text += i < count ? fmt::format("{:12.4e}", data.values[first + i]) : "            ";
        appendHeaderLine(out, text, "IONOSPHERIC CORR");
    };
    if (data.system == 'E')
        return line("GAL", 0, 3);
    line(data.system == 'G' ? "GPSA" : "BDSA", 0, 4);
    line(data.system == 'G' ? "GPSB" : "BDSB", 4, 4);
}

void appendTimeCorrection(Buffer& out, const TimeOffset& offset)
{
    const auto* const laboratory =
        std::find_if(std::begin(laboratories), std::end(laboratories),
                     [&](const Laboratory& l) { return l.kind == offset.kind; });
    const unsigned number = laboratory == std::end(laboratories) ? 0 : laboratory->number;
    appendHeaderLine(out,
                     fmt::format("{:4} {:17.10e}{:16.9e}{:7}{:5} {:5} {:2} ", offset.kind,
                                 offset.a0, offset.a1, std::lround(offset.second),
                                 std::lround(offset.week), "", number),
                     "TIME SYSTEM CORR");
}

void appendLeapSeconds(Buffer& out, const LeapSecondsInfo& leap)
{
    std::string text = fmt::format("{:6}", leap.current);
    if (leap.hasFuture)
        text += fmt::format("{:6}{:6}{:6}", leap.future, leap.week, leap.day);
    appendHeaderLine(out, text, "LEAP SECONDS");
}

void endLine(Buffer& out)
{
    const std::string_view text = out.view();
    out.truncate(text.find_last_not_of(' ') + 1);
    out.append('\n');
}

/// `count` numbers, `inFirst` of them in the current line and four in each further one.
template<typename Value>
void appendNumbers(Buffer& out, size_t count, size_t inFirst, Value value)
{
    size_t inLine = 4 - inFirst;
    for (size_t i = 0; i < count; ++i) {
        if (inLine == 4) {
            endLine(out);
            out.append("    ");
            inLine = 0;
        }
        appendScientific(out, value(i));
        ++inLine;
    }
    endLine(out);
}

void appendEphemeris(Buffer& out, const Ephemeris& ephemeris, RinexVersion version)
{
    if (version == RinexVersion::V402) {
        out.append(fmt::format("> EPH {} {}\n", ephemeris.satellite.text(),
                               field(nameOf(ephemeris.message), 4)));
    }
    out.append(ephemeris.satellite.text() + " " + timeText(ephemeris.reference));
    const auto& layout = rinex::layoutOf(ephemeris.satellite.system, ephemeris.message);
    appendNumbers(out, layout.size(), 3, [&](size_t i) {
        const rinex::LayoutField& entry = layout[i];
        if (!entry.member)
            return entry.scale == 0 ? 0 : Ephemeris::none;
        return ephemeris.*entry.member * entry.scale;
    });
}

void appendIonosphere(Buffer& out, const Ionosphere& data)
{
    out.append(fmt::format("> ION {}   {}\n    {}", data.system, messageOf(data.system),
                           timeText(data.reference)));
    const size_t count = data.system == 'E' ? 4 : 8;
    appendNumbers(out, count, 3, [&](size_t i) {
        return data.system == 'E' && i == 3 ? data.disturbance : data.values[i];
    });
}

void appendOffset(Buffer& out, const TimeOffset& offset)
{
    const char system = systemOf(offset);
    const auto* const laboratory =
        std::find_if(std::begin(laboratories), std::end(laboratories),
                     [&](const Laboratory& l) { return l.kind == offset.kind; });
    out.append(fmt::format("> STO {}   {}\n    {} {:18} {:18} {:18}\n    ", system,
                           messageOf(system), timeText(offset.reference), offset.kind, "",
                           laboratory == std::end(laboratories) ? "" : laboratory->name));
    const double values[] = {offset.transmitted, offset.a0, offset.a1, offset.a2};
    appendNumbers(out, 4, 4, [&](size_t i) { return values[i]; });
}

} // namespace

bool isWritten(const Ephemeris& ephemeris, RinexVersion version)
{
    switch (ephemeris.message) {
    case NavigationMessage::Cnav:
    case NavigationMessage::Cnv1:
    case NavigationMessage::Cnv2:
    case NavigationMessage::Cnv3:
        return version != RinexVersion::V305;
    default:
        return true;
    }
}

void writeNavigationFile(Buffer& out, const NavigationStore& store, const EpochSelection& selection,
                         const std::optional<LeapSecondsInfo>& leapSeconds,
                         const RinexOptions& options)
{
    const bool isV3 = options.version == RinexVersion::V305;
    appendHead(out, options);
    if (isV3) {
        std::map<char, const Ionosphere*> ionosphere;
        for (const Ionosphere& data : store.getIonosphere())
            ionosphere[data.system] = &data;
        for (const auto& last : ionosphere)
            appendIonosphericCorrection(out, *last.second);
        std::map<std::string, const TimeOffset*> offsets;
        for (const TimeOffset& offset : store.getTimeOffsets())
            offsets[offset.kind] = &offset;
        for (const auto& last : offsets)
            appendTimeCorrection(out, *last.second);
    }
    if (leapSeconds)
        appendLeapSeconds(out, *leapSeconds);
    appendHeaderLine(out, "", "END OF HEADER");
    if (!isV3) {
        for (const TimeOffset& offset : store.getTimeOffsets())
            appendOffset(out, offset);
        for (const Ionosphere& data : store.getIonosphere())
            appendIonosphere(out, data);
    }
    std::vector<const Ephemeris*> sorted;
    for (const Ephemeris& ephemeris : store.getEphemerides()) {
        if (isWritten(ephemeris, options.version) && selection.accepts(ephemeris.satellite))
            sorted.push_back(&ephemeris);
    }
    std::stable_sort(sorted.begin(), sorted.end(), [](const Ephemeris* a, const Ephemeris* b) {
        return a->reference < b->reference;
    });
    for (const Ephemeris* ephemeris : sorted)
        appendEphemeris(out, *ephemeris, options.version);
}

} // namespace tqx
