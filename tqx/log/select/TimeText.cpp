#include "tqx/log/select/TimeText.h"

#include "tqx/log/DataError.h"
#include "tqx/log/text/PrintableText.h"
#include "tqx/log/time/CalendarDate.h"
#include "tqx/log/time/LeapSeconds.h"

#include <fmt/format.h>

#include <array>
#include <cctype>
#include <optional>
#include <string_view>

namespace tqx
{

namespace
{

constexpr uint64_t secondsPerDay = 86400;
constexpr uint64_t highestWeek = 65534;

/// The rest of a text to parse.
class Reader
{
public:
    explicit Reader(std::string_view text) : m_rest(text) {}

    bool atEnd() const { return m_rest.empty(); }
    std::string_view left() const { return m_rest; }

    bool skip(char wanted)
    {
        if (m_rest.empty() || m_rest.front() != wanted)
            return false;
        m_rest.remove_prefix(1);
        return true;
    }

    /// A number of `least` to `most` digits.
    std::optional<uint64_t> digits(size_t least, size_t most)
    {
        uint64_t value = 0;
        size_t count = 0;
        while (count < most && count < m_rest.size() &&
               std::isdigit(static_cast<unsigned char>(m_rest[count])))
            value = value * 10 + static_cast<uint64_t>(m_rest[count++] - '0');
        m_rest.remove_prefix(count);
        return count < least ? std::nullopt : std::make_optional(value);
    }

    /// ".5" in milliseconds; 0 when there is no point.
    std::optional<uint64_t> decimals()
    {
        if (!skip('.'))
            return 0;
        const size_t before = m_rest.size();
        std::optional<uint64_t> value = digits(1, 3);
        for (size_t count = before - m_rest.size(); value && count < 3; ++count)
            *value *= 10;
        return value;
    }

private:
    std::string_view m_rest;
};

/// A date and a time of day on some scale.
struct CivilTime {
    uint64_t day; ///< since 1980-01-06
    uint64_t second;
    uint64_t millis;
};

std::optional<GnssMillis> readWeek(Reader reader)
{
    const auto week = reader.digits(1, 5);
    if (!week || *week > highestWeek || !reader.skip(':'))
        return std::nullopt;
    const auto seconds = reader.digits(1, 6);
    const auto millis = reader.decimals();
    if (!seconds || *seconds >= secondsPerWeek || !millis || !reader.atEnd())
        return std::nullopt;
    return (*week * secondsPerWeek + *seconds) * 1000 + *millis;
}

std::optional<CivilTime> readDate(Reader& reader)
{
    const auto year = reader.digits(4, 4);
    const bool first = reader.skip('-');
    const auto month = reader.digits(2, 2);
    const bool second = reader.skip('-');
    const auto day = reader.digits(2, 2);
    if (!year || !first || !month || !second || !day)
        return std::nullopt;
    const CalendarDate date = {static_cast<unsigned>(*year), static_cast<unsigned>(*month),
                               static_cast<unsigned>(*day)};
    if (!exists(date) || daysOf(date) < 0)
        return std::nullopt;
    return CivilTime{static_cast<uint64_t>(daysOf(date)), 0, 0};
}

/// "12:00", "12:00:00" or "12:00:00.5"; a day with a leap second has a second 60.
bool readTimeOfDay(Reader& reader, CivilTime& time)
{
    const auto hour = reader.digits(2, 2);
    const bool parted = reader.skip(':');
    const auto minute = reader.digits(2, 2);
    if (!hour || *hour > 23 || !parted || !minute || *minute > 59)
        return false;
    time.second = *hour * 3600 + *minute * 60;
    if (!reader.skip(':'))
        return true;
    const auto second = reader.digits(2, 2);
    const auto millis = reader.decimals();
    if (!second || *second > 60 || (*second == 60 && time.second != secondsPerDay - 60) || !millis)
        return false;
    time.second += *second;
    time.millis = *millis;
    return true;
}

[[noreturn]] void fail(const std::string& option, const std::string& text, const char* why)
{
    throw DataError(fmt::format("{}: '{}' {}", option, shortened(text), why));
}

bool hasTimeOfDay(std::string_view rest)
{
    return rest.size() > 1 && (rest.front() == 'T' || rest.front() == ' ') &&
           std::isdigit(static_cast<unsigned char>(rest[1]));
}

} // namespace

GnssMillis parseTime(const std::string& option, const std::string& text)
{
    constexpr const char* noTime =
        "is not a time; write week:seconds, or a date from 1980-01-06 on such as "
        "2026-01-06T11:59:42Z or '2026-01-06T12:00:00 GPS'";
    if (const auto time = readWeek(Reader(text)))
        return *time;
    Reader reader(text);
    auto time = readDate(reader);
    if (!time)
        fail(option, text, noTime);
    if (hasTimeOfDay(reader.left())) {
        reader = Reader(reader.left().substr(1));
        if (!readTimeOfDay(reader, *time))
            fail(option, text, noTime);
    }
    const bool apart = reader.skip(' ');
    const std::string_view scale = reader.left();
    const bool isUtc = scale == "UTC" || (scale == "Z" && !apart);
    if (scale.empty()) {
        fail(option, text,
             "does not say on which scale; put Z after it for UTC, ' GPS' for GPS time");
    }
    if (!isUtc && scale != "GPS")
        fail(option, text, noTime);
    if (time->second == secondsPerDay && !(isUtc && endsWithLeapSecond(time->day)))
        fail(option, text, "has a second 60, but there was no leap second");
    const uint64_t leapSeconds = isUtc ? leapSecondsBefore(time->day) : 0;
    return (time->day * secondsPerDay + time->second + leapSeconds) * 1000 + time->millis;
}

} // namespace tqx
