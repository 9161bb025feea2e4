#include "RinexText.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <stdexcept>

namespace rinex
{

namespace
{

/// The columns `from` to `to`, counted from 1; blanks where the line is shorter.
std::string columns(const std::string& line, size_t from, size_t to)
{
    std::string text = line.size() < from ? "" : line.substr(from - 1, to - from + 1);
    text.resize(to - from + 1, ' ');
    return text;
}

std::string trimmed(std::string text)
{
    while (!text.empty() && text.back() == ' ')
        text.pop_back();
    while (!text.empty() && text.front() == ' ')
        text.erase(0, 1);
    return text;
}

std::optional<double> number(std::string text)
{
    text = trimmed(text);
    if (text.empty())
        return std::nullopt;
    for (char& character : text) {
        if (character == 'D' || character == 'd')
            character = 'e';
    }
    char* end = nullptr;
    const double value = std::strtod(text.c_str(), &end);
    if (*end != 0)
        throw std::runtime_error("no number: " + text);
    return value;
}

int whole(const std::string& text)
{
    const auto value = number(text);
    if (!value || *value != std::floor(*value))
        throw std::runtime_error("no whole number: " + text);
    return static_cast<int>(*value);
}

int digit(char character)
{
    return character == ' ' ? 0 : character - '0';
}

/// Takes the header off the front.
std::vector<HeaderLine> readHeader(const std::vector<std::string>& lines, size_t& at)
{
    std::vector<HeaderLine> header;
    while (at < lines.size()) {
        const std::string& line = lines[at++];
        header.push_back({columns(line, 1, 60), trimmed(columns(line, 61, 80))});
        if (header.back().label == "END OF HEADER")
            return header;
    }
    throw std::runtime_error("the header has no end");
}

void readTypes(ObservationFile& file)
{
    char system = ' ';
    size_t expected = 0;
    for (const HeaderLine& line : file.header) {
        if (line.label != "SYS / # / OBS TYPES")
            continue;
        if (line.content[0] != ' ') {
            system = line.content[0];
            expected = static_cast<size_t>(whole(columns(line.content, 4, 6)));
        }
        for (size_t i = 8; i <= 56 && file.types[system].size() < expected; i += 4)
            file.types[system].push_back(columns(line.content, i, i + 2));
    }
}

SatelliteLine readSatellite(const ObservationFile& file, const std::string& line)
{
    SatelliteLine satellite;
    satellite.satellite = columns(line, 1, 3);
    size_t column = 4;
    for (const std::string& type : file.types.at(line.at(0))) {
        if (const auto value = number(columns(line, column, column + 13))) {
            satellite.values[type] = {*value, digit(columns(line, column + 14, column + 14)[0]),
                                      digit(columns(line, column + 15, column + 15)[0])};
        }
        column += 16;
    }
    return satellite;
}

double timeOf(const std::string& line, size_t at)
{
    return secondsOf(whole(columns(line, at, at + 3)), whole(columns(line, at + 5, at + 6)),
                     whole(columns(line, at + 8, at + 9)), whole(columns(line, at + 11, at + 12)),
                     whole(columns(line, at + 14, at + 15)),
                     *number(columns(line, at + 16, at + 26)));
}

/// Lines of numbers of a record: those of the first line after its time, then of all that follow.
void readNumbers(NavigationRecord& record, const std::vector<std::string>& lines, size_t& at,
                 size_t first, size_t inFirst)
{
    const auto take = [&](const std::string& line, size_t column, size_t count) {
        for (size_t i = 0; i < count; ++i)
            record.numbers.push_back(number(columns(line, column + 19 * i, column + 19 * i + 18)));
    };
    if (inFirst != 0)
        take(lines[at - 1], first, inFirst);
    while (at < lines.size() && lines[at].compare(0, 4, "    ") == 0)
        take(lines[at++], 5, 4);
    while (!record.numbers.empty() && !record.numbers.back())
        record.numbers.pop_back();
}

/// The time in columns 5 to 23, of whole seconds.
double messageTime(const std::string& line)
{
    return secondsOf(whole(columns(line, 5, 8)), whole(columns(line, 10, 11)),
                     whole(columns(line, 13, 14)), whole(columns(line, 16, 17)),
                     whole(columns(line, 19, 20)), whole(columns(line, 22, 23)));
}

} // namespace

std::vector<std::string> linesOf(const std::string& text)
{
    std::vector<std::string> lines;
    for (size_t start = 0; start < text.size();) {
        const size_t end = text.find('\n', start);
        lines.push_back(text.substr(start, end - start));
        start = end == std::string::npos ? text.size() : end + 1;
    }
    return lines;
}

double secondsOf(int year, int month, int day, int hour, int minute, double second)
{
    // Days by the formula of Fliegel and Van Flandern.
    const int a = (month - 14) / 12;
    const int days = 1461 * (year + 4800 + a) / 4 + 367 * (month - 2 - 12 * a) / 12 -
                     3 * ((year + 4900 + a) / 100) / 4 + day - 32075;
    return (days - 2451545) * 86400.0 + hour * 3600.0 + minute * 60.0 + second;
}

std::string ObservationFile::only(const std::string& label) const
{
    std::vector<std::string> found;
    for (const HeaderLine& line : header) {
        if (line.label == label)
            found.push_back(line.content);
    }
    EXPECT_EQ(found.size(), 1U) << label;
    return found.empty() ? std::string(60, ' ') : found[0];
}

ObservationFile readObservations(const std::string& text)
{
    const std::vector<std::string> lines = linesOf(text);
    size_t at = 0;
    ObservationFile file;
    file.header = readHeader(lines, at);
    readTypes(file);
    while (at < lines.size()) {
        const std::string& line = lines[at++];
        if (line.empty() || line[0] != '>')
            throw std::runtime_error("no epoch line: " + line);
        Epoch epoch = {};
        epoch.time = columns(line, 3, 29);
        epoch.seconds = timeOf(line, 3);
        epoch.flag = whole(columns(line, 32, 32));
        epoch.offset = number(columns(line, 42, 56));
        const int count = whole(columns(line, 33, 35));
        for (int i = 0; i < count; ++i) {
            const std::string& next = lines.at(at++);
            if (epoch.flag <= 1) {
                epoch.satellites.push_back(readSatellite(file, next));
            } else {
                epoch.lines.push_back(next);
            }
        }
        file.epochs.push_back(epoch);
    }
    return file;
}

NavigationFile readNavigation(const std::string& text)
{
    const std::vector<std::string> lines = linesOf(text);
    size_t at = 0;
    NavigationFile file;
    file.header = readHeader(lines, at);
    file.version = *number(columns(file.header.at(0).content, 1, 9));
    while (at < lines.size()) {
        NavigationRecord record;
        record.kind = "EPH";
        if (file.version >= 4) {
            const std::string& head = lines[at++];
            if (head.empty() || head[0] != '>')
                throw std::runtime_error("no record: " + head);
            record.kind = columns(head, 3, 5);
            record.satellite = trimmed(columns(head, 7, 9));
            record.message = trimmed(columns(head, 11, 14));
        }
        const std::string& line = lines.at(at++);
        record.seconds = messageTime(line);
        if (record.kind == "EPH")
            record.satellite = columns(line, 1, 3);
        if (record.kind == "STO")
            record.text = columns(line, 25, 80);
        readNumbers(record, lines, at, 24, record.kind == "STO" ? 0 : 3);
        file.records.push_back(record);
    }
    return file;
}

} // namespace rinex
