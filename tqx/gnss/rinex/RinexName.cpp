#include "tqx/gnss/rinex/RinexName.h"

#include "tqx/gnss/rinex/HeaderText.h"

#include <fmt/format.h>

#include <cctype>

namespace tqx
{

namespace
{

/// Letters and digits in upper case, filled up with zeros.
std::string nameText(const std::string& text, size_t width, char fill)
{
    std::string kept;
    for (const char character : text) {
        const auto code = static_cast<unsigned char>(character);
        if (kept.size() < width && std::isalnum(code) != 0 && code < 0x80)
            kept += static_cast<char>(std::toupper(code));
    }
    kept.resize(width, fill);
    return kept;
}

/// A duration in the unit in which it has at most two digits, rounded up: 60 minutes are an hour.
std::string durationText(GnssMillis millis)
{
    const uint64_t minutes = std::max<uint64_t>((millis + 59999) / 60000, 1);
    const uint64_t hours = (minutes + 59) / 60;
    const uint64_t days = (hours + 23) / 24;
    if (minutes <= 99 && minutes % 60 != 0)
        return fmt::format("{:02}M", minutes);
    if (hours <= 99 && hours % 24 != 0)
        return fmt::format("{:02}H", hours);
    if (days <= 99)
        return fmt::format("{:02}D", days);
    return "00U";
}

std::string intervalText(GnssMillis millis)
{
    struct Unit {
        GnssMillis size;
        char letter;
    };
    if (millis != 0 && millis < 1000 && 1000 % millis == 0) {
        const uint64_t hertz = 1000 / millis;
        return hertz <= 99 ? fmt::format("{:02}Z", hertz) : fmt::format("{:02}C", hertz / 100);
    }
    for (const Unit unit :
         {Unit{86400000, 'D'}, Unit{3600000, 'H'}, Unit{60000, 'M'}, Unit{1000, 'S'}}) {
        if (millis != 0 && millis % unit.size == 0 && millis / unit.size <= 99)
            return fmt::format("{:02}{}", millis / unit.size, unit.letter);
    }
    return "00U";
}

/// Whether a marker is a whole station name: site, two numbers and country, "GRAZ00AUT".
bool isStationName(const std::string& marker)
{
    constexpr size_t length = 9;
    constexpr size_t numbers = 4;
    constexpr size_t country = 6;
    if (marker.size() != length)
        return false;
    for (size_t i = 0; i < length; ++i) {
        const auto code = static_cast<unsigned char>(marker[i]);
        const bool isDigit = code >= '0' && code <= '9';
        const bool isLetter = code < 0x80 && std::isalpha(code) != 0;
        if ((i >= numbers && i < country) ? !isDigit
            : i >= country                ? !isLetter
                                          : !isDigit && !isLetter)
            return false;
    }
    return true;
}

std::string beginning(const NameParts& parts)
{
    SetUp setUp = parts.setUp;
    if (isStationName(parts.marker)) {
        setUp.monument = static_cast<uint8_t>(parts.marker[4] - '0');
        setUp.receiver = static_cast<uint8_t>(parts.marker[5] - '0');
        setUp.country = parts.marker.substr(6);
    }
    const std::string& site = !parts.marker.empty() ? parts.marker
                              : !setUp.site.empty() ? setUp.site
                                                    : setUp.marker;
    const rinex::CivilTime start(parts.first);
    return fmt::format(
        "{}{}{}{}_R_{:04}{:03}{:02}{:02}_{}", nameText(site.empty() ? "XXXX" : site, 4, '0'),
        (setUp.monument + parts.antenna) % 10, setUp.receiver % 10, nameText(setUp.country, 3, 'X'),
        start.date.year, start.dayOfYear, start.hour, start.minute,
        durationText(parts.last - parts.first + parts.interval));
}

} // namespace

std::string observationFileName(const NameParts& parts)
{
    return fmt::format("{}_{}_MO.rnx", beginning(parts), intervalText(parts.interval));
}

std::string navigationFileName(const NameParts& parts)
{
    return beginning(parts) + "_MN.rnx";
}

} // namespace tqx
