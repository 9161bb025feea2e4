#pragma once

#include <array>
#include <map>
#include <optional>
#include <string>
#include <vector>

/// RINEX files as the public documents describe them, read by code of the tests alone.
namespace rinex
{

struct HeaderLine {
    std::string content; ///< columns 1 to 60
    std::string label;   ///< columns 61 to 80, without blanks at its end
};

/// A number of an observation with its two digits, 0 where they are blank.
struct Value {
    double number;
    int lock;
    int strength;
};

struct SatelliteLine {
    std::string satellite;
    std::map<std::string, Value> values; ///< by type, those that are there
};

struct Epoch {
    std::string time; ///< columns 3 to 29
    double seconds;   ///< since 2000-01-01
    int flag;
    std::optional<double> offset;
    std::vector<SatelliteLine> satellites; ///< with flag 0 and 1
    std::vector<std::string> lines;        ///< with other flags
};

struct ObservationFile {
    std::vector<HeaderLine> header;
    std::map<char, std::vector<std::string>> types;
    std::vector<Epoch> epochs;

    /// The content of a header line; fails the test when there is not exactly one.
    std::string only(const std::string& label) const;
};

/// A record of a navigation file.
struct NavigationRecord {
    std::string kind;      ///< EPH, STO, ION, EOP
    std::string satellite; ///< "G05", or the letter alone
    std::string message;   ///< in files of version 4
    double seconds = 0;    ///< of its time, since 2000-01-01
    std::vector<std::optional<double>> numbers;
    std::string text; ///< of STO, what follows the time
};

struct NavigationFile {
    double version = 0;
    std::vector<HeaderLine> header;
    std::vector<NavigationRecord> records;
};

/// Both throw std::runtime_error with the line that is not as it should be.
ObservationFile readObservations(const std::string& text);
NavigationFile readNavigation(const std::string& text);

/// Seconds from 2000-01-01 to a date and time.
double secondsOf(int year, int month, int day, int hour, int minute, double second);

std::vector<std::string> linesOf(const std::string& text);

} // namespace rinex
