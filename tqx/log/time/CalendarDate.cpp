#include "tqx/log/time/CalendarDate.h"

namespace tqx
{

// Both directions count in years that begin in March, so that leap days come last.

namespace
{

constexpr uint64_t epoch = 723125; // days from 0000-03-01 to 1980-01-06

} // namespace

CalendarDate dateOf(uint64_t days)
{
    const uint64_t day = days + epoch;
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

int64_t daysOf(const CalendarDate& date)
{
    const int64_t year = static_cast<int64_t>(date.year) - (date.month <= 2 ? 1 : 0);
    const int64_t month = date.month <= 2 ? date.month + 9 : date.month - 3;
    const int64_t ofYear = (153 * month + 2) / 5 + date.day - 1;
    return year * 365 + year / 4 - year / 100 + year / 400 + ofYear - static_cast<int64_t>(epoch);
}

bool exists(const CalendarDate& date)
{
    constexpr unsigned days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (date.year == 0 || date.month < 1 || date.month > 12 || date.day < 1)
        return false;
    const bool isLeap = (date.year % 4 == 0 && date.year % 100 != 0) || date.year % 400 == 0;
    return date.day <= days[date.month - 1] + (date.month == 2 && isLeap ? 1 : 0);
}

} // namespace tqx
