// The header of observation files.

#include "tqx/gnss/rinex/HeaderText.h"
#include "tqx/gnss/rinex/ObservationFile.h"

#include "tqx/log/time/LeapSeconds.h"

#include <fmt/format.h>

#include <algorithm>

namespace tqx
{

using rinex::appendHeaderLine;
using rinex::field;
using rinex::plain;

namespace
{

std::string timeFields(GnssMillis time)
{
    const rinex::CivilTime civil(time);
    return fmt::format("{:6}{:6}{:6}{:6}{:6}{:13.7f}     GPS", civil.date.year, civil.date.month,
                       civil.date.day, civil.hour, civil.minute, civil.second);
}

std::string codeText(const SignalCode& code)
{
    return {code.band, code.attribute};
}

const char* nameOf(char system)
{
    switch (system) {
    case 'G':
        return "G (GPS)";
    case 'R':
        return "R (GLONASS)";
    case 'E':
        return "E (Galileo)";
    case 'C':
        return "C (BeiDou)";
    case 'J':
        return "J (QZSS)";
    case 'I':
        return "I (NavIC)";
    case 'S':
        return "S (SBAS)";
    default:
        return "M (MIXED)";
    }
}

} // namespace

void ObservationFile::addIdentity(Buffer& out) const
{
    char system = ' ';
    for (unsigned i = 0; i < systemCount; ++i) {
        if (!m_columns[i].empty())
            system = system == ' ' ? systemLetters[i] : 'M';
    }
    appendHeaderLine(
        out,
        field(m_options.version == RinexVersion::V305 ? "     3.05" : "     4.02", 20) +
            field("OBSERVATION DATA", 20) + nameOf(system),
        "RINEX VERSION / TYPE");
    appendHeaderLine(out,
                     field(plain(m_options.program), 20) + field(plain(m_options.runBy), 20) +
                         field(m_options.date, 20),
                     "PGM / RUN BY / DATE");
}

void ObservationFile::addInstallation(Buffer& out, const SetUp& setUp) const
{
    const auto chosen = [](const std::string& option, const std::string& logged) {
        return option.empty() ? logged : plain(option);
    };
    std::string marker = chosen(m_options.marker, setUp.marker);
    if (marker.empty())
        marker = "UNKNOWN";
    if (m_antenna != 0)
        marker += fmt::format("_AUX{}", m_antenna);
    appendHeaderLine(out, marker, "MARKER NAME");
    if (!setUp.markerNumber.empty())
        appendHeaderLine(out, setUp.markerNumber, "MARKER NUMBER");
    if (!setUp.markerType.empty())
        appendHeaderLine(out, setUp.markerType, "MARKER TYPE");
    appendHeaderLine(out,
                     field(chosen(m_options.observer, setUp.observer), 20) +
                         chosen(m_options.agency, setUp.agency),
                     "OBSERVER / AGENCY");
    appendHeaderLine(out,
                     field(setUp.receiverNumber, 20) + field(setUp.receiverType, 20) +
                         field(setUp.receiverVersion, 20),
                     "REC # / TYPE / VERS");
    // The block describes the main antenna alone.
    const bool isMain = m_antenna == 0;
    appendHeaderLine(out,
                     isMain ? field(setUp.antennaNumber, 20) + field(setUp.antennaType, 20) : "",
                     "ANT # / TYPE");
    if (m_place || setUp.hasPosition) {
        const LogSurvey::Place place =
            setUp.hasPosition ? LogSurvey::Place{setUp.x, setUp.y, setUp.z} : *m_place;
        appendHeaderLine(out, fmt::format("{:14.4f}{:14.4f}{:14.4f}", place.x, place.y, place.z),
                         "APPROX POSITION XYZ");
    }
    appendHeaderLine(out,
                     fmt::format("{:14.4f}{:14.4f}{:14.4f}", isMain ? setUp.height : 0,
                                 isMain ? setUp.east : 0, isMain ? setUp.north : 0),
                     "ANTENNA: DELTA H/E/N");
}

void ObservationFile::addTypes(Buffer& out) const
{
    constexpr size_t perLine = 13;
    for (unsigned system = 0; system < systemCount; ++system) {
        std::vector<std::string> types;
        for (const Column& column : m_columns[system]) {
            for (unsigned kind = 0; kind < valueKinds; ++kind) {
                if (column.kinds[kind])
                    types.push_back(valueLetters[kind] + codeText(column.code));
            }
        }
        for (size_t i = 0; i < types.size(); i += perLine) {
            std::string line =
                i == 0 ? fmt::format("{}  {:3}", systemLetters[system], types.size()) : "      ";
            for (size_t k = i; k < std::min(types.size(), i + perLine); ++k)
                line += " " + types[k];
            appendHeaderLine(out, line, "SYS / # / OBS TYPES");
        }
    }
}

void ObservationFile::addTimes(Buffer& out) const
{
    appendHeaderLine(out, "DBHZ", "SIGNAL STRENGTH UNIT");
    if (const GnssMillis interval = m_survey.getInterval()) {
        appendHeaderLine(out, fmt::format("{:10.3f}", static_cast<double>(interval) * 1e-3),
                         "INTERVAL");
    }
    appendHeaderLine(out, timeFields(m_survey.first), "TIME OF FIRST OBS");
    appendHeaderLine(out, timeFields(m_survey.last), "TIME OF LAST OBS");
    appendHeaderLine(out, "     0", "RCV CLOCK OFFS APPL");
}

/// Blocks do not say whether phases of one frequency are aligned, so that the corrections are
/// blank: not known.
void ObservationFile::addPhases(Buffer& out) const
{
    for (unsigned system = 0; system < systemCount; ++system) {
        for (const Column& column : m_columns[system]) {
            if (column.kinds[static_cast<unsigned>(ValueKind::Phase)]) {
                appendHeaderLine(
                    out, fmt::format("{} L{}", systemLetters[system], codeText(column.code)),
                    "SYS / PHASE SHIFT");
            }
        }
    }
}

void ObservationFile::addGlonass(Buffer& out) const
{
    constexpr unsigned perLine = 8;
    std::string line = fmt::format("{:3} ", m_survey.channels.size());
    unsigned count = 0;
    for (const auto& [slot, channel] : m_survey.channels) {
        if (count != 0 && count % perLine == 0) {
            appendHeaderLine(out, line, "GLONASS SLOT / FRQ #");
            line = "    ";
        }
        line += fmt::format("R{:02} {:2} ", slot, channel);
        ++count;
    }
    appendHeaderLine(out, line, "GLONASS SLOT / FRQ #");
    if (m_options.version == RinexVersion::V305)
        appendHeaderLine(out, "", "GLONASS COD/PHS/BIS");
}

void ObservationFile::addCounts(Buffer& out) const
{
    constexpr size_t perLine = 9;
    Buffer lines;
    size_t satellites = 0;
    for (unsigned system = 0; system < systemCount; ++system) {
        for (const auto& [satellite, signals] : m_survey.satellites) {
            if (satellite.system != systemLetters[system] || m_columns[system].empty())
                continue;
            std::vector<uint32_t> counts;
            for (const Column& column : m_columns[system]) {
                for (unsigned kind = 0; kind < valueKinds; ++kind) {
                    if (column.kinds[kind]) {
                        const auto found = signals.find(column.code);
                        counts.push_back(found == signals.end() ? 0 : found->second[kind]);
                    }
                }
            }
            ++satellites;
            for (size_t i = 0; i < counts.size(); i += perLine) {
                std::string line = i == 0 ? "   " + satellite.text() : "      ";
                for (size_t k = i; k < std::min(counts.size(), i + perLine); ++k)
                    line += fmt::format("{:6}", std::min<uint32_t>(counts[k], 999999));
                appendHeaderLine(lines, line, "PRN / # OF OBS");
            }
        }
    }
    appendHeaderLine(out, fmt::format("{:6}", satellites), "# OF SATELLITES");
    out.append(lines.view());
}

void ObservationFile::writeHeader(Buffer& out) const
{
    addIdentity(out);
    if (m_antenna != 0) {
        appendHeaderLine(out, fmt::format("Auxiliary antenna {} of the receiver", m_antenna),
                         "COMMENT");
    }
    addInstallation(out, m_setUp);
    addTypes(out);
    addTimes(out);
    if (m_options.version == RinexVersion::V305)
        addPhases(out);
    if (!m_columns[systemIndex('R')].empty())
        addGlonass(out);
    if (m_leapSeconds && m_leapSeconds->hasFuture) {
        appendHeaderLine(out,
                         fmt::format("{:6}{:6}{:6}{:6}", m_leapSeconds->current,
                                     m_leapSeconds->future, m_leapSeconds->week,
                                     m_leapSeconds->day),
                         "LEAP SECONDS");
    } else {
        appendHeaderLine(out,
                         fmt::format("{:6}", m_leapSeconds ? m_leapSeconds->current
                                                           : static_cast<int>(leapSecondsBefore(
                                                                 m_survey.first / 86400000))),
                         "LEAP SECONDS");
    }
    addCounts(out);
    appendHeaderLine(out, "", "END OF HEADER");
}

} // namespace tqx
