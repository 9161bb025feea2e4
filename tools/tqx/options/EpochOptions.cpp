#include "options/EpochOptions.h"

#include "options/Numbers.h"
#include "tqx/log/DataError.h"
#include "tqx/log/select/TimeText.h"

#include <cmath>

namespace tqx::tool
{

namespace
{

const char* const group = "Which of them";

std::string refuseEmpty(const std::string& value)
{
    return value.empty() ? "it is empty" : "";
}

void addPatterns(CLI::App& command, const char* name, std::vector<std::string>& patterns,
                 const char* description, const char* type)
{
    command.add_option(name, patterns, description)
        ->delimiter(',')
        ->allow_extra_args(false)
        ->type_name(type)
        ->group(group);
}

} // namespace

const char* const EpochOptions::notes =
    "Times: 2400:216000.5 is week and seconds in GNSS time, 2026-01-06T11:59:42Z is UTC,\n"
    "'2026-01-06T12:00:00 GPS' is GPS time. Epochs before --from are still read, so that\n"
    "a loss of lock at the first one shown is known.\n";

void EpochOptions::addTimes(CLI::App& command)
{
    command
        .add_option("--from", m_from,
                    "Only from this time on: GNSS week:seconds, or a date in UTC or GPS time such "
                    "as 2026-01-06T11:59:42Z or '2026-01-06T12:00:00 GPS'")
        ->type_name("TIME")
        ->check(refuseEmpty)
        ->group(group);
    command.add_option("--to", m_to, "Only before this time, written like that of --from")
        ->type_name("TIME")
        ->check(refuseEmpty)
        ->group(group);
}

void EpochOptions::addWithoutSignals(CLI::App& command)
{
    addTimes(command);
    addPatterns(command, "--satellite", m_selection.satellites,
                "Only these satellites: names or patterns such as 'G*,E11'", "NAME,NAME");
}

void EpochOptions::add(CLI::App& command)
{
    addWithoutSignals(command);
    addPatterns(command, "--signal", m_selection.signals,
                "Only these signals: band and attribute as in RINEX, with or without the system, "
                "or patterns such as '1C,G5*'",
                "CODE,CODE");
    addReal(command, "--interval", m_interval, 0.001, 604800, "seconds",
            "Only epochs at multiples of this in GNSS time, such as 30 for every half minute")
        ->type_name("SECONDS")
        ->default_str("")
        ->group(group);
}

EpochSelection EpochOptions::get() const
{
    EpochSelection selection = m_selection;
    if (!m_from.empty())
        selection.from = parseTime("--from", m_from);
    if (!m_to.empty())
        selection.to = parseTime("--to", m_to);
    if (selection.from && selection.to && *selection.from >= *selection.to)
        throw DataError("--from is not before --to");
    if (m_interval != 0) {
        const double millis = m_interval * 1000;
        if (millis != std::round(millis))
            throw DataError("--interval is not in whole milliseconds");
        selection.interval = static_cast<GnssMillis>(millis);
    }
    return selection;
}

} // namespace tqx::tool
