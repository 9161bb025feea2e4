#include "RinexArcs.h"

#include <cmath>
#include <optional>
#include <vector>

namespace
{

constexpr double lightSpeed = 299792458;

/// MHz of a band as the RINEX documents list them.
double frequencyOf(char system, char band, int channel)
{
    switch (system) {
    case 'R':
        return band == '1' ? 1602e6 + channel * 562.5e3 : 1246e6 + channel * 437.5e3;
    case 'C':
        return band == '2' ? 1561.098e6 : band == '6' ? 1268.52e6 : 1207.14e6;
    default:
        return band == '1'   ? 1575.42e6
               : band == '2' ? 1227.6e6
               : band == '5' ? 1176.45e6
                             : 1207.14e6;
    }
}

std::map<std::string, int> channelsOf(const rinex::ObservationFile& file)
{
    std::map<std::string, int> channels;
    for (const rinex::HeaderLine& line : file.header) {
        if (line.label != "GLONASS SLOT / FRQ #")
            continue;
        for (size_t at = 4; at + 6 < line.content.size(); at += 7) {
            if (line.content[at] == 'R')
                channels[line.content.substr(at, 3)] = std::stoi(line.content.substr(at + 4, 2));
        }
    }
    return channels;
}

struct Measured {
    double time;
    double length; ///< of the phase
    std::optional<double> range;
    double frequency;
    bool isLost;
};

/// What was measured at an epoch, by code.
using Look = std::map<std::string, Measured>;

/// The epochs of a satellite, and where its arcs are broken.
struct Series {
    std::vector<Look> looks;
    std::vector<bool> isSlip;
};

bool isBroken(const Look& before, const Look& now, double longest)
{
    const auto isNear = [&](const std::string& code) {
        const auto old = before.find(code);
        return old != before.end() && now.at(code).time - old->second.time <= longest;
    };
    const std::string& reference = now.begin()->first;
    for (const auto& [code, measured] : now) {
        if (!isNear(code))
            continue;
        if (measured.isLost)
            return true;
        if (code == reference || !isNear(reference) ||
            before.at(code).time != before.at(reference).time)
            continue;
        const double free = now.at(reference).length - measured.length;
        const double old = before.at(reference).length - before.at(code).length;
        if (std::fabs(free - old) > 0.10 + 0.003 * (measured.time - before.at(code).time))
            return true;
    }
    return false;
}

} // namespace

double RinexArcs::Multipath::get() const
{
    return std::sqrt(squares / epochs);
}

RinexArcs::RinexArcs(const rinex::ObservationFile& file, double interval)
{
    const auto channels = channelsOf(file);
    std::map<std::string, std::vector<Look>> satellites;
    for (const rinex::Epoch& epoch : file.epochs) {
        for (const rinex::SatelliteLine& line : epoch.satellites) {
            const auto channel = channels.find(line.satellite);
            Look look;
            for (const auto& [type, value] : line.values) {
                if (type[0] != 'L')
                    continue;
                const std::string code = type.substr(1);
                const double frequency = frequencyOf(
                    line.satellite[0], code[0], channel == channels.end() ? 0 : channel->second);
                const auto range = line.values.find("C" + code);
                look[code] = {epoch.seconds, value.number * lightSpeed / frequency,
                              range == line.values.end()
                                  ? std::optional<double>()
                                  : std::optional<double>(range->second.number),
                              frequency, (value.lock & 1) != 0};
            }
            if (!look.empty())
                satellites[line.satellite].push_back(look);
        }
    }
    for (const auto& [satellite, looks] : satellites) {
        Look last;
        std::map<std::string, std::vector<double>> arcs;
        std::map<std::string, std::string> partners;
        const char system = satellite[0];
        const auto close = [&](const std::string& code) {
            std::vector<double>& arc = arcs[code];
            if (arc.size() >= 20) {
                double mean = 0;
                for (const double value : arc)
                    mean += value / static_cast<double>(arc.size());
                Multipath& sum = multipath[system + code];
                for (const double value : arc)
                    sum.squares += (value - mean) * (value - mean);
                sum.epochs += static_cast<unsigned>(arc.size());
            }
            arc.clear();
        };
        for (const Look& look : looks) {
            const double now = look.begin()->second.time;
            for (auto old = last.begin(); old != last.end();) {
                const bool isOver = now - old->second.time > 3.5 * interval;
                if (isOver)
                    close(old->first);
                old = isOver ? last.erase(old) : std::next(old);
            }
            if (isBroken(last, look, 3.5 * interval)) {
                ++slips[satellite];
                for (const auto& [code, arc] : std::map(arcs))
                    close(code);
            }
            for (const auto& [code, measured] : look) {
                last[code] = measured;
                for (const auto& [other, second] : look) {
                    if (second.frequency == measured.frequency)
                        continue;
                    if (partners[code] != other)
                        close(code);
                    partners[code] = other;
                    const double own = measured.frequency * measured.frequency;
                    const double alien = second.frequency * second.frequency;
                    if (measured.range) {
                        arcs[code].push_back(*measured.range - measured.length -
                                             2 * alien / (own - alien) *
                                                 (measured.length - second.length));
                    }
                    break;
                }
            }
        }
        for (const auto& [code, arc] : std::map(arcs))
            close(code);
    }
}
