#include "RinexRules.h"

#include "RinexText.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <exception>
#include <map>
#include <regex>
#include <set>

namespace rinex
{

namespace
{

using Faults = std::vector<std::string>;

/// A header record: its label, its fields as the documents write formats, where it must be.
struct HeaderRule {
    const char* label;
    const char* format;
    enum class Need { Always, WithGlonass, InV3, Never } need;
    bool isRepeated;
};

using Need = HeaderRule::Need;

const HeaderRule observationHeader[] = {
    {"RINEX VERSION / TYPE", "F9.2,11X,A20,A20", Need::Always, false},
    {"PGM / RUN BY / DATE", "A20,A20,A20", Need::Always, false},
    {"COMMENT", "A60", Need::Never, true},
    {"MARKER NAME", "A60", Need::Always, false},
    {"MARKER NUMBER", "A20,40X", Need::Never, false},
    {"MARKER TYPE", "A20,40X", Need::Never, false},
    {"OBSERVER / AGENCY", "A20,A40", Need::Always, false},
    {"REC # / TYPE / VERS", "A20,A20,A20", Need::Always, false},
    {"ANT # / TYPE", "A20,A20,20X", Need::Always, false},
    {"APPROX POSITION XYZ", "F14.4,F14.4,F14.4,18X", Need::Never, false},
    {"ANTENNA: DELTA H/E/N", "F14.4,F14.4,F14.4,18X", Need::Always, false},
    {"SYS / # / OBS TYPES", "A1,2X,I3,A54", Need::Always, true},
    {"SIGNAL STRENGTH UNIT", "A20,40X", Need::Never, false},
    {"INTERVAL", "F10.3,50X", Need::Never, false},
    {"TIME OF FIRST OBS", "I6,I6,I6,I6,I6,F13.7,5X,A3,9X", Need::Always, false},
    {"TIME OF LAST OBS", "I6,I6,I6,I6,I6,F13.7,5X,A3,9X", Need::Never, false},
    {"RCV CLOCK OFFS APPL", "I6,54X", Need::Never, false},
    {"SYS / PHASE SHIFT", "A1,1X,A3,1X,F8.5,46X", Need::InV3, true},
    {"GLONASS SLOT / FRQ #", "I3,1X,A56", Need::WithGlonass, true},
    {"GLONASS COD/PHS/BIS", "1X,A3,1X,F8.3,1X,A3,1X,F8.3,1X,A3,1X,F8.3,1X,A3,1X,F8.3,8X",
     Need::Never, false},
    {"LEAP SECONDS", "I6,I6,I6,I6,A3,33X", Need::Never, false},
    {"# OF SATELLITES", "I6,54X", Need::Never, false},
    {"PRN / # OF OBS", "3X,A3,I6,I6,I6,I6,I6,I6,I6,I6,I6", Need::Never, true},
    {"END OF HEADER", "60X", Need::Always, false},
};

const std::map<char, const char*> codes = {
    {'G', "1[CSLXPWYMN]|2[CDSLXPWYMN]|5[IQX]"},
    {'R', "1[CP]|4[ABX]|2[CP]|6[ABX]|3[IQX]"},
    {'E', "1[ABCXZ]|5[IQX]|7[IQX]|8[IQX]|6[ABCXZ]"},
    {'S', "1C|5[IQX]"},
    {'J', "1[CSLXZBE]|2[SLX]|5[IQXDPZ]|6[SLXEZ]"},
    {'C', "2[IQX]|1[DPXSLZ]|5[DPX]|7[IQXDPZ]|8[DPX]|6[IQXDPZ]"},
    {'I', "5[ABCX]|9[ABCX]|1[DPX]"},
};

bool isBlank(const std::string& text)
{
    return text.find_first_not_of(' ') == std::string::npos;
}

/// Whether a field of a format is as it says; blank numbers are allowed.
bool fits(const std::string& field, char kind, size_t decimals)
{
    if (kind == 'X')
        return isBlank(field);
    if (kind == 'A' || isBlank(field))
        return true;
    if (kind == 'I')
        return std::regex_match(field, std::regex(" *-?[0-9]+"));
    return std::regex_match(field,
                            std::regex(" *-?[0-9]+[.][0-9]{" + std::to_string(decimals) + "}"));
}

/// Checks a line against "F9.2,11X,A20": every column up to the end of the format.
void checkFormat(const std::string& content, const HeaderRule& rule, Faults& faults)
{
    const std::string format = rule.format;
    size_t column = 0;
    for (size_t start = 0; start < format.size();) {
        const size_t end = std::min(format.find(',', start), format.size());
        const std::string part = format.substr(start, end - start);
        start = end + 1;
        const bool isGap = part.back() == 'X';
        const char kind = isGap ? 'X' : part[0];
        const double width = std::strtod(part.c_str() + (isGap ? 0 : 1), nullptr);
        const auto whole = static_cast<size_t>(width);
        const auto decimals = static_cast<size_t>(std::lround((width - std::floor(width)) * 10));
        if (column + whole > content.size() ||
            !fits(content.substr(column, whole), kind, decimals)) {
            faults.push_back(std::string(rule.label) + ": column " + std::to_string(column + 1) +
                             " is not " + part);
        }
        column += whole;
    }
}

void checkHeader(const std::vector<std::string>& lines, const ObservationFile& file, Faults& faults)
{
    std::map<std::string, int> counts;
    for (size_t i = 0; i < file.header.size(); ++i) {
        const HeaderLine& line = file.header[i];
        if (lines[i].size() != 80)
            faults.push_back("header line of " + std::to_string(lines[i].size()) + " columns");
        const auto* const rule =
            std::find_if(std::begin(observationHeader), std::end(observationHeader),
                         [&](const HeaderRule& r) { return r.label == line.label; });
        if (rule == std::end(observationHeader)) {
            faults.push_back("unknown label " + line.label);
            continue;
        }
        ++counts[line.label];
        checkFormat(line.content, *rule, faults);
    }
    if (file.header[0].label != "RINEX VERSION / TYPE")
        faults.emplace_back("the version is not first");
    const bool isV3 = file.header[0].content.substr(0, 9) == "     3.05";
    if (!isV3 && file.header[0].content.substr(0, 9) != "     4.02")
        faults.emplace_back("unknown version");
    for (const HeaderRule& rule : observationHeader) {
        const bool isNeeded = rule.need == Need::Always || (rule.need == Need::InV3 && isV3) ||
                              (rule.need == Need::WithGlonass && file.types.count('R') != 0);
        if (isNeeded && counts[rule.label] == 0)
            faults.push_back(std::string("missing ") + rule.label);
        if (!rule.isRepeated && counts[rule.label] > 1)
            faults.push_back(std::string("twice ") + rule.label);
    }
    if (isV3 && file.types.count('R') != 0 && counts["GLONASS COD/PHS/BIS"] != 1)
        faults.emplace_back("missing GLONASS COD/PHS/BIS");
}

void checkTypes(const ObservationFile& file, Faults& faults)
{
    std::set<std::string> shifts;
    for (const HeaderLine& line : file.header) {
        if (line.label == "SYS / PHASE SHIFT")
            shifts.insert(line.content.substr(0, 5));
    }
    std::string systems;
    for (const auto& [system, types] : file.types) {
        systems += system;
        const auto code = codes.find(system);
        if (code == codes.end()) {
            faults.emplace_back("unknown system");
            continue;
        }
        const std::regex known(std::string("[CLDS](") + code->second + ")");
        for (const std::string& type : types) {
            if (!std::regex_match(type, known))
                faults.push_back("no such type " + type);
            if (type[0] == 'L' && file.header[0].content[5] == '3' &&
                shifts.count(std::string(1, system) + " " + type) == 0)
                faults.push_back("no phase shift of " + type);
        }
        if (std::set<std::string>(types.begin(), types.end()).size() != types.size())
            faults.emplace_back("a type twice");
    }
    const char expected = systems.size() == 1 ? systems[0] : 'M';
    if (file.header[0].content[20] != 'O' || file.header[0].content[40] != expected)
        faults.emplace_back("wrong kind or system in the first line");
}

/// Counts and times that the header says against those of the epochs.
void checkSummary(const ObservationFile& file, Faults& faults)
{
    std::map<std::string, std::map<std::string, int>> found;
    std::vector<const Epoch*> epochs;
    for (const Epoch& epoch : file.epochs) {
        if (epoch.flag <= 1)
            epochs.push_back(&epoch);
        for (const SatelliteLine& satellite : epoch.satellites) {
            found[satellite.satellite];
            for (const auto& value : satellite.values)
                ++found[satellite.satellite][value.first];
        }
    }
    std::string satellite;
    std::vector<int> counts;
    std::map<std::string, std::vector<int>> listed;
    for (const HeaderLine& line : file.header) {
        if (line.label == "PRN / # OF OBS") {
            if (line.content[3] != ' ')
                satellite = line.content.substr(3, 3);
            for (size_t i = 6; i < 60 && !isBlank(line.content.substr(i, 6)); i += 6)
                listed[satellite].push_back(std::stoi(line.content.substr(i, 6)));
        }
        if (line.label == "# OF SATELLITES" &&
            std::stoi(line.content) != static_cast<int>(found.size()))
            faults.emplace_back("wrong # OF SATELLITES");
        const bool isFirst = line.label == "TIME OF FIRST OBS";
        if ((isFirst || line.label == "TIME OF LAST OBS") && !epochs.empty()) {
            const auto part = [&](size_t i) { return std::stoi(line.content.substr(i, 6)); };
            const double time =
                secondsOf(part(0), part(6), part(12), part(18), part(24),
                          std::strtod(line.content.substr(30, 13).c_str(), nullptr));
            if (std::fabs(time - (isFirst ? epochs.front() : epochs.back())->seconds) > 1e-6)
                faults.push_back("wrong " + line.label);
        }
    }
    for (const auto& [name, values] : found) {
        std::vector<int> expected;
        for (const std::string& type : file.types.at(name[0])) {
            const auto count = values.find(type);
            expected.push_back(count == values.end() ? 0 : count->second);
        }
        if (listed[name] != expected)
            faults.push_back("wrong PRN / # OF OBS of " + name);
    }
}

/// The cells of a line with observations.
void checkCells(const std::string& line, size_t types, Faults& faults)
{
    static const std::regex cell("( *-?[0-9]+[.][0-9]{3}[ 0-7][ 1-9])|( {16})");
    std::string cells = line.substr(3);
    if (cells.size() > types * 16)
        faults.push_back("more observations than types: " + line);
    cells.resize(types * 16, ' ');
    for (size_t i = 0; i < types; ++i) {
        if (!std::regex_match(cells.substr(i * 16, 16), cell))
            faults.push_back("no observation: '" + cells.substr(i * 16, 16) + "'");
    }
}

void checkEpochs(const std::vector<std::string>& lines, const ObservationFile& file, Faults& faults)
{
    static const std::regex head(
        "> [0-9]{4} [ 0-9][0-9] [ 0-9][0-9] [ 0-9][0-9] [ 0-9][0-9][ 0-9]{3}[.][0-9]{7}  "
        "[0-6][ 0-9]{2}[0-9](      [ -][ 0-9.]{14})? *");
    size_t at = file.header.size();
    double last = -1e99;
    double lastEpoch = last;
    for (const Epoch& epoch : file.epochs) {
        if (!std::regex_match(lines[at], head))
            faults.push_back("epoch line: " + lines[at]);
        ++at;
        if (epoch.seconds < last || (epoch.flag <= 1 && epoch.seconds == lastEpoch))
            faults.push_back("epochs out of order: " + epoch.time);
        last = epoch.seconds;
        if (epoch.flag <= 1)
            lastEpoch = last;
        std::set<std::string> names;
        for (const SatelliteLine& satellite : epoch.satellites) {
            if (!std::regex_match(satellite.satellite, std::regex("[GRECJIS][0-9]{2}")))
                faults.push_back("no satellite: " + satellite.satellite);
            if (!names.insert(satellite.satellite).second)
                faults.push_back("a satellite twice: " + satellite.satellite);
            if (satellite.values.empty())
                faults.push_back("a satellite without observations: " + satellite.satellite);
            checkCells(lines[at++], file.types.at(satellite.satellite[0]).size(), faults);
        }
        if (epoch.flag <= 1 && epoch.satellites.empty())
            faults.emplace_back("an epoch without satellites");
        for (const std::string& line : epoch.lines) {
            if (line.size() != 80)
                faults.push_back("event line: " + line);
            ++at;
        }
    }
}

/// How many numbers a record has after the clock, at least and at most.
struct RecordRule {
    const char* key; ///< system and message of version 4
    size_t least;
    size_t most;
};

const RecordRule recordRules[] = {
    {"GLNAV", 28, 29}, {"GCNAV", 33, 33}, {"GCNV2", 37, 37}, {"RFDMA", 19, 19},
    {"EINAV", 28, 28}, {"EFNAV", 28, 28}, {"CD1", 29, 29},   {"CD2", 29, 29},
    {"CCNV1", 39, 39}, {"CCNV2", 39, 39}, {"CCNV3", 32, 32}, {"JLNAV", 28, 29},
    {"JCNAV", 33, 33}, {"JCNV2", 37, 37}, {"ILNAV", 28, 28}, {"SSBAS", 14, 15},
};

} // namespace

std::vector<std::string> faultsOfObservations(const std::string& text)
{
    Faults faults;
    try {
        const ObservationFile file = readObservations(text);
        const std::vector<std::string> lines = linesOf(text);
        checkHeader(lines, file, faults);
        checkTypes(file, faults);
        checkSummary(file, faults);
        checkEpochs(lines, file, faults);
    } catch (const std::exception& error) {
        faults.emplace_back(error.what());
    }
    if (text.empty() || text.back() != '\n')
        faults.emplace_back("the last line has no end");
    return faults;
}

std::vector<std::string> faultsOfNavigation(const std::string& text)
{
    Faults faults;
    try {
        const NavigationFile file = readNavigation(text);
        for (const std::string& line : linesOf(text)) {
            if (line.size() > 80)
                faults.push_back("line of more than 80 columns: " + line);
        }
        for (const HeaderLine& line : file.header) {
            if (!std::regex_match(line.label,
                                  std::regex("RINEX VERSION / TYPE|PGM / RUN BY / DATE|COMMENT|DOI|"
                                             "MERGED FILE|LEAP SECONDS|END OF HEADER|"
                                             "IONOSPHERIC CORR|TIME SYSTEM CORR")))
                faults.push_back("unknown label " + line.label);
        }
        double last = -1e99;
        for (const NavigationRecord& record : file.records) {
            if (record.kind != "EPH")
                continue;
            const auto* const rule = std::find_if(
                std::begin(recordRules), std::end(recordRules), [&](const RecordRule& r) {
                    return record.satellite.substr(0, 1) + record.message == r.key ||
                           (record.message.empty() && r.key[0] == record.satellite[0]);
                });
            const size_t count = record.numbers.size();
            if (rule == std::end(recordRules) || count < rule->least || count > rule->most) {
                faults.push_back(record.satellite + " " + record.message + ": " +
                                 std::to_string(count) + " numbers");
            }
            if (file.header[1].content.substr(0, 3) == "tqx" && record.seconds < last - 86400)
                faults.emplace_back("records out of order");
            last = record.seconds;
        }
    } catch (const std::exception& error) {
        faults.emplace_back(error.what());
    }
    return faults;
}

} // namespace rinex
