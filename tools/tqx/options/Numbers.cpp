#include "options/Numbers.h"

#include "tqx/log/DataError.h"
#include "tqx/log/record/TypeNames.h"
#include "tqx/log/text/PrintableText.h"

#include <CLI/Error.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <limits>

namespace tqx::tool
{

namespace
{

/// Numbers are shown as given, not with pages of digits.
constexpr size_t longestShown = 40;

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

bool isWhole(std::string_view text)
{
    return !text.empty() && std::all_of(text.begin(), text.end(), isDigit);
}

[[noreturn]] void fail(std::string_view text, const std::string& why)
{
    throw DataError(fmt::format("'{}' {}", shortened(text, longestShown), why));
}

/// Adds an option whose value `read` takes from its text.
template<typename Value, typename Read>
CLI::Option* add(CLI::App& command, const std::string& name, Value& value, Read read,
                 const std::string& description)
{
    const auto take = [&value, name, read](const CLI::results_t& given) {
        try {
            value = static_cast<Value>(read(given.back()));
        } catch (const DataError& error) {
            throw CLI::ValidationError(name, error.what());
        }
        return true;
    };
    return command.add_option(name, take, description)
        ->default_str(fmt::format("{}", value))
        ->expected(1);
}

} // namespace

uint64_t numbers::whole(std::string_view text, uint64_t least, uint64_t most)
{
    if (!isWhole(text))
        fail(text, "is not a whole number");
    uint64_t value = 0;
    const char* end = text.data() + text.size();
    if (std::from_chars(text.data(), end, value).ec != std::errc() || value < least || value > most)
        fail(text, fmt::format("is not in the range {} to {}", least, most));
    return value;
}

double numbers::real(std::string_view text, double least, double most, const char* unit)
{
    double value = 0;
    const char* end = text.data() + text.size();
    const bool isSigned = !text.empty() && text.front() == '-';
    const bool isNumber = text.size() > (isSigned ? 1 : 0) &&
                          (isDigit(text[isSigned ? 1 : 0]) || text[isSigned ? 1 : 0] == '.');
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (!isNumber || stop != end || error == std::errc::invalid_argument) {
        fail(text, *unit == '\0' ? "is not a number"
                                 : fmt::format("is not a number of {}, such as {}", unit,
                                               std::clamp(60.0, least, most)));
    }
    if (error != std::errc() || !(value >= least && value <= most))
        fail(text, fmt::format("is not in the range {} to {}", least, most));
    return value;
}

uint64_t numbers::bytes(std::string_view text)
{
    struct Unit {
        const char* name;
        uint64_t size;
    };
    constexpr uint64_t kilo = 1000;
    constexpr uint64_t kibi = 1024;
    static constexpr Unit units[] = {{"", 1},
                                     {"B", 1},
                                     {"k", kilo},
                                     {"M", kilo * kilo},
                                     {"G", kilo * kilo * kilo},
                                     {"T", kilo * kilo * kilo * kilo},
                                     {"kB", kilo},
                                     {"MB", kilo * kilo},
                                     {"GB", kilo * kilo * kilo},
                                     {"TB", kilo * kilo * kilo * kilo},
                                     {"KiB", kibi},
                                     {"MiB", kibi * kibi},
                                     {"GiB", kibi * kibi * kibi},
                                     {"TiB", kibi * kibi * kibi * kibi}};
    const auto firstLetter = std::find_if_not(text.begin(), text.end(), isDigit);
    const std::string_view digits =
        text.substr(0, static_cast<size_t>(std::distance(text.begin(), firstLetter)));
    const std::string_view name = text.substr(digits.size());
    const auto unit = std::find_if(std::begin(units), std::end(units), [&](const Unit& candidate) {
        return equalNames(name, candidate.name);
    });
    if (!isWhole(digits) || unit == std::end(units))
        fail(text, "is not a size, such as 500MB or 1GiB");
    uint64_t count = 0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), count);
    if (result.ec != std::errc() || count > std::numeric_limits<uint64_t>::max() / unit->size)
        fail(text, "is too large");
    return count * unit->size;
}

CLI::Option* addWhole(CLI::App& command, const std::string& name, uint64_t& value, uint64_t least,
                      uint64_t most, const std::string& description)
{
    return add(
        command, name, value,
        [least, most](const std::string& text) { return numbers::whole(text, least, most); },
        description);
}

CLI::Option* addWhole(CLI::App& command, const std::string& name, uint32_t& value, uint32_t least,
                      uint32_t most, const std::string& description)
{
    return add(
        command, name, value,
        [least, most](const std::string& text) { return numbers::whole(text, least, most); },
        description);
}

CLI::Option* addReal(CLI::App& command, const std::string& name, double& value, double least,
                     double most, const char* unit, const std::string& description)
{
    return add(
        command, name, value,
        [least, most, unit](const std::string& text) {
            return numbers::real(text, least, most, unit);
        },
        description);
}

CLI::Option* addBytes(CLI::App& command, const std::string& name, uint64_t& value,
                      const std::string& description)
{
    return add(
        command, name, value, [](const std::string& text) { return numbers::bytes(text); },
        description);
}

} // namespace tqx::tool
