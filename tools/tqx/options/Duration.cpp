#include "options/Duration.h"

#include "options/Numbers.h"
#include "tqx/log/DataError.h"
#include "tqx/log/record/TypeNames.h"
#include "tqx/log/text/PrintableText.h"

#include <CLI/Error.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace tqx::tool
{

uint64_t durationMillis(std::string_view text)
{
    struct Unit {
        const char* name;
        double millis;
    };
    static constexpr Unit units[] = {{"ms", 1},    {"s", 1000},    {"min", 60000},
                                     {"m", 60000}, {"h", 3600000}, {"d", 86400000}};
    constexpr double longest = 3650 * 86400000.0;
    constexpr size_t longestShown = 40;
    const size_t digits = std::min(text.find_first_not_of("0123456789."), text.size());
    const std::string_view name = text.substr(digits);
    const auto* unit = std::find_if(std::begin(units), std::end(units), [&](const Unit& candidate) {
        return equalNames(name, candidate.name);
    });
    if (unit == std::end(units) || digits == 0) {
        throw DataError(fmt::format("'{}' is not a duration, such as 30s, 15min, 1h or 1d",
                                    shortened(text, longestShown)));
    }
    const double millis = numbers::real(text.substr(0, digits), 0, longest) * unit->millis;
    const double whole = std::round(millis);
    if (whole < 1 || whole > longest || std::fabs(millis - whole) > 1e-6 * whole) {
        throw DataError(fmt::format("'{}' is not 1 ms to 3650 d in whole milliseconds",
                                    shortened(text, longestShown)));
    }
    return static_cast<uint64_t>(whole);
}

CLI::Option* addDuration(CLI::App& command, const std::string& name, uint64_t& millis,
                         const std::string& description)
{
    const auto take = [&millis, name](const CLI::results_t& given) {
        try {
            millis = durationMillis(given.back());
        } catch (const DataError& error) {
            throw CLI::ValidationError(name, error.what());
        }
        return true;
    };
    return command.add_option(name, take, description)->type_name("DURATION")->expected(1);
}

} // namespace tqx::tool
