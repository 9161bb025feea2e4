#include "tqx/gnss/rinex/ObservationFile.h"

#include "tqx/gnss/rinex/HeaderText.h"
#include "tqx/log/text/Digits.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace tqx
{

namespace
{

constexpr size_t valueWidth = 14;
constexpr size_t cellWidth = 16; ///< with the two digits after the value

/// NavIC has its signal on L1 in files of version 4 only.
bool isKnown(char system, const SignalCode& code, RinexVersion version)
{
    return version != RinexVersion::V305 || system != 'I' || code.band != '1';
}

/// Writes the digits of a number so that they end at `end`. Returns where they begin.
inline char* writeWhole(char* end, uint32_t value)
{
    while (value >= 100) {
        end -= 2;
        std::memcpy(end, digits::pairs[value % 100].data(), 2);
        value /= 100;
    }
    if (value < 10) {
        *--end = static_cast<char>('0' + value);
        return end;
    }
    end -= 2;
    std::memcpy(end, digits::pairs[value].data(), 2);
    return end;
}

/// F14.3; false for what does not fit or is not available. The 14 characters must be blank before.
bool writeValue(char* cell, double value)
{
    constexpr double limit = 999999999.9994;
    if (!(value < limit * 10 && value > -limit))
        return false;
    constexpr uint64_t half = 100000000;
    const auto thousandths = static_cast<int64_t>(value * 1000 + (value < 0 ? -0.5 : 0.5));
    const auto steps = static_cast<uint64_t>(thousandths < 0 ? -thousandths : thousandths);
    // Less than 10^13; the lower eight digits always have room, whether they count or not.
    const auto high = static_cast<uint32_t>(steps / half);
    const auto low = static_cast<uint32_t>(steps % half);
    char* const point = cell + valueWidth - 4;
    *point = '.';
    const uint32_t fraction = low % 1000;
    std::memcpy(point + 2, digits::pairs[fraction % 100].data(), 2);
    point[1] = static_cast<char>('0' + fraction / 100);
    const uint32_t whole = low / 1000; // five digits
    char* start = nullptr;
    if (high != 0) {
        writeDigits(point, whole, 5);
        start = writeWhole(point - 5, high);
    } else {
        start = writeWhole(point, whole);
    }
    if (thousandths < 0)
        *--start = '-';
    return true;
}

/// Signal strength projected to 1 to 9.
char strengthDigit(double cn0)
{
    return static_cast<char>('0' + std::clamp(static_cast<int>(cn0 / 6), 1, 9));
}

/// "> 2026 01 06 12 00  0.0000000  0 35". `ticks` are tenths of microseconds after the
/// milliseconds.
void appendEpochLine(Buffer& out, GnssMillis time, unsigned flag, size_t count, unsigned ticks = 0)
{
    const rinex::CivilTime civil(time);
    char line[] = ">                              0   ";
    writeDigits(line + 6, civil.date.year, 4);
    writeDigits(line + 9, civil.date.month, 2);
    writeDigits(line + 12, civil.date.day, 2);
    writeDigits(line + 15, civil.hour, 2);
    writeDigits(line + 18, civil.minute, 2);
    const auto millis = static_cast<unsigned>(time % 60000);
    std::memcpy(line + 18, "  0.0000000", 11);
    writeDigits(line + 29, millis % 1000 * 10000 + ticks, 7);
    const unsigned second = millis / 1000;
    if (second >= 10) {
        writeDigits(line + 21, second, 2);
    } else {
        line[20] = static_cast<char>('0' + second);
    }
    line[31] = static_cast<char>('0' + flag);
    writeDigits(line + 35, count, count > 99 ? 3 : count > 9 ? 2 : 1);
    out.append(line, 35);
}

/// F15.12 after six blanks; nothing if it does not fit or is not available.
void appendOffset(Buffer& out, double seconds)
{
    constexpr double largest = 10;
    if (!(std::fabs(seconds) < largest))
        return;
    char text[] = "       0.000000000000";
    char* const end = text + sizeof text - 1;
    const auto steps = static_cast<uint64_t>(std::llround(std::fabs(seconds) * 1e12));
    writeDigits(end, steps, 12);
    constexpr uint64_t perSecond = 1000000000000;
    char* const start = writeWhole(end - 13, static_cast<uint32_t>(steps / perSecond));
    if (std::signbit(seconds))
        *(start - 1) = '-';
    out.append(text, sizeof text - 1);
}

} // namespace

ObservationFile::ObservationFile(const LogSurvey& survey, uint8_t antenna,
                                 const RinexOptions& options)
    : m_options(options), m_antenna(antenna), m_survey(survey.getAntennas().at(antenna)),
      m_place(survey.getPlace()), m_leapSeconds(survey.getLeapSeconds()),
      m_setUp(survey.getSetUp().value_or(SetUp())), m_current(m_setUp)
{
    for (unsigned system = 0; system < systemCount; ++system) {
        m_places[system].fill(-1);
        for (const auto& [code, counts] : m_survey.signals[system]) {
            Column column = {code, {}, 0};
            for (unsigned kind = 0; kind < valueKinds; ++kind) {
                column.kinds[kind] = counts[kind] != 0;
                column.width += counts[kind] != 0 ? cellWidth : 0;
            }
            const bool isEmpty =
                std::none_of(column.kinds.begin(), column.kinds.end(), [](bool b) { return b; });
            if (isEmpty || !isKnown(systemLetters[system], code, m_options.version))
                continue;
            m_places[system][placeOf(code)] = static_cast<int8_t>(m_columns[system].size());
            m_columns[system].push_back(column);
            m_hasSignals = true;
        }
    }
    // A satellite whose channel is in no observation may have an ephemeris.
    for (const auto& [slot, channel] : survey.getChannels()) {
        if (m_survey.satellites.count({'R', slot}) != 0)
            m_survey.channels.emplace(slot, channel);
    }
}

void ObservationFile::change(const SetUp& setUp)
{
    m_current = setUp;
}

/// The values of a signal. Returns where the last one ends, null without any.
char* ObservationFile::writeCells(char* cell, const Column& column, const Observation& observation)
{
    char* end = nullptr;
    const auto write = [&](ValueKind kind, double value) {
        if (!column.kinds[static_cast<size_t>(kind)])
            return false;
        const bool isThere = writeValue(cell, value);
        cell += cellWidth;
        if (isThere)
            end = cell - (cellWidth - valueWidth);
        return isThere;
    };
    const bool hasStrength = !std::isnan(observation.cn0);
    const char strength = hasStrength ? strengthDigit(observation.cn0) : ' ';
    const auto addStrength = [&] {
        if (hasStrength) {
            cell[-1] = strength;
            end = cell;
        }
    };
    if (write(ValueKind::Range, observation.range))
        addStrength();
    if (write(ValueKind::Phase, observation.phase)) {
        const int lock = (observation.isLost ? 1 : 0) | (observation.isHalfCycle ? 2 : 0);
        if (lock != 0)
            *end++ = static_cast<char>('0' + lock);
        addStrength();
    }
    write(ValueKind::Doppler, observation.doppler);
    write(ValueKind::Strength, observation.cn0);
    return end;
}

/// Sorts the observations of this antenna into rows and columns. Returns the number of rows.
size_t ObservationFile::collect(const ObservationEpoch& epoch)
{
    size_t used = 0;
    for (const Observation& observation : epoch.observations) {
        const unsigned system = systemIndex(observation.satellite.system);
        const int8_t place = m_places[system][placeOf(observation.code)];
        if (observation.antenna != m_antenna || place < 0 || !hasValue(observation))
            continue;
        uint16_t& row = m_rowOf[system * 256 + observation.satellite.number];
        if (row == 0) {
            if (used == m_rows.size())
                m_rows.emplace_back();
            m_rows[used].satellite = observation.satellite;
            m_rows[used].observations.assign(m_columns[system].size(), nullptr);
            row = static_cast<uint16_t>(++used);
        }
        m_rows[row - 1U].observations[static_cast<size_t>(place)] = &observation;
    }
    for (size_t i = 0; i < used; ++i) {
        const SatelliteId& satellite = m_rows[i].satellite;
        m_rowOf[systemIndex(satellite.system) * 256 + satellite.number] = 0;
    }
    return used;
}

void ObservationFile::writeRow(Buffer& out, const Row& row) const
{
    const std::vector<Column>& columns = m_columns[systemIndex(row.satellite.system)];
    const size_t width = 3 + columns.size() * valueKinds * cellWidth;
    char* const start = out.reserve(width + 1);
    std::memset(start, ' ', width);
    start[0] = row.satellite.system;
    writeDigits(start + 3, row.satellite.number, 2);
    char* cell = start + 3;
    char* end = cell; // after the last non-blank character
    for (size_t i = 0; i < columns.size(); ++i) {
        if (const Observation* const observation = row.observations[i]) {
            if (char* const last = writeCells(cell, columns[i], *observation))
                end = last;
        }
        cell += columns[i].width;
    }
    *end = '\n';
    out.advance(static_cast<size_t>(end - start) + 1);
}

/// New occupation of a site (3), or other lines of the header (4).
void ObservationFile::writeChange(Buffer& out, GnssMillis time)
{
    Buffer lines;
    const bool isMoved =
        m_current.marker != m_setUp.marker || m_current.markerNumber != m_setUp.markerNumber;
    addInstallation(lines, m_current);
    const std::string_view text = lines.view();
    const auto count = static_cast<size_t>(std::count(text.begin(), text.end(), '\n'));
    appendEpochLine(out, time, isMoved ? 3 : 4, count);
    out.append('\n');
    out.append(text);
    m_setUp = m_current;
}

void ObservationFile::writeEvent(Buffer& out, GnssMillis time, uint32_t nanoseconds,
                                 std::string_view input, std::string_view edge) const
{
    constexpr unsigned externalEvent = 5;
    constexpr unsigned ticksPerMilli = 10000;
    const unsigned ticks = (nanoseconds + 50) / 100;
    const bool isNamed = !input.empty() || !edge.empty();
    appendEpochLine(out, time + ticks / ticksPerMilli, externalEvent, isNamed ? 1 : 0,
                    ticks % ticksPerMilli);
    out.append('\n');
    if (isNamed)
        rinex::appendHeaderLine(out, fmt::format("EXTERNAL EVENT {} {}", input, edge), "COMMENT");
}

void ObservationFile::write(Buffer& out, const ObservationEpoch& epoch)
{
    const size_t count = collect(epoch);
    if (count == 0)
        return;
    if (m_current != m_setUp)
        writeChange(out, epoch.time);
    appendEpochLine(out, epoch.time, 0, count);
    appendOffset(out, epoch.clockBias);
    out.append('\n');
    for (size_t i = 0; i < count; ++i)
        writeRow(out, m_rows[i]);
}

} // namespace tqx
