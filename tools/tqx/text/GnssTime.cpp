#include "GnssTime.h"

#include <fmt/format.h>

namespace tool
{

namespace
{

struct Date {
    unsigned year;
    unsigned month;
    unsigned day;
};

/// Day 0 is 1980-01-06. Counts in years that begin in March, so that leap days come last.
Date dateOf(uint64_t days)
{
    constexpr uint64_t toMarchOfYear0 = 723125; // days from 0000-03-01 to 1980-01-06
    const uint64_t day = days + toMarchOfYear0;
    const uint64_t era = day / 146097;
    const uint64_t ofEra = day % 146097;
    const uint64_t yearOfEra = (ofEra - ofEra / 1460 + ofEra / 36524 - ofEra / 146096) / 365;
    const uint64_t ofYear = ofEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const uint64_t month = (5 * ofYear + 2) / 153;
    const uint64_t monthOfDate = month < 10 ? month + 3 : month - 9;
    const uint64_t year = yearOfEra + era * 400 + (monthOfDate <= 2 ? 1 : 0);
    return {static_cast<unsigned>(year), static_cast<unsigned>(monthOfDate),
            static_cast<unsigned>(ofYear - (153 * month + 2) / 5 + 1)};
}

} // namespace

std::optional<GnssMillis> gnssMillis(uint32_t tow, uint16_t week)
{
    constexpr uint32_t noTow = 0xffffffff;
    constexpr uint16_t noWeek = 0xffff;
    if (tow == noTow || week == noWeek)
        return std::nullopt;
    return week * millisPerWeek + tow;
}

std::string weekText(GnssMillis millis)
{
    const uint64_t tow = millis % millisPerWeek;
    return fmt::format("{}:{}.{:03}", millis / millisPerWeek, tow / 1000, tow % 1000);
}

std::string dateText(GnssMillis millis)
{
    constexpr uint64_t perDay = 86400000;
    const Date date = dateOf(millis / perDay);
    const uint64_t time = millis % perDay;
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}.{:03}", date.year, date.month, date.day,
                       time / 3600000, time / 60000 % 60, time / 1000 % 60, time % 1000);
}

} // namespace tool
