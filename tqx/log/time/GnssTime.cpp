#include "tqx/log/time/GnssTime.h"

#include "tqx/log/time/CalendarDate.h"

#include <fmt/format.h>

namespace tqx
{

std::optional<GnssMillis> gnssMillis(uint32_t tow, uint16_t week)
{
    constexpr uint16_t noWeek = 0xffff;
    if (tow == Kor::MessageApi::TQX_noTOW || week == noWeek)
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
    const CalendarDate date = dateOf(millis / perDay);
    const uint64_t time = millis % perDay;
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}.{:03}", date.year, date.month, date.day,
                       time / 3600000, time / 60000 % 60, time / 1000 % 60, time % 1000);
}

std::string timeText(GnssMillis millis)
{
    return weekText(millis) + "  " + dateText(millis) + " GPS";
}

} // namespace tqx
