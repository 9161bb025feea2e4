#include "reference/CommandLine.h"

#include "reference/Reference.h"
#include "tqx/log/record/TypeNames.h"
#include "tqx/log/text/PrintableText.h"

#include <fmt/format.h>

#include <string_view>
#include <vector>

namespace tqx::tool
{

namespace
{

constexpr size_t longestText = 400;

std::string unknownOption(const CLI::App& app, const std::string& given)
{
    std::vector<std::string> names;
    for (const CLI::Option* option : optionsOf(app)) {
        for (const std::string& name : option->get_lnames())
            names.push_back("--" + name);
    }
    return unknownName("option", std::string_view(given).substr(0, given.find('=')),
                       {names.begin(), names.end()});
}

/// The word given instead of a command.
std::string describeCommand(const CLI::App& program)
{
    const std::vector<std::string> extras = program.remaining(true);
    if (extras.empty())
        return "a command is required (see tqx help)";
    if (extras.front().rfind('-', 0) == 0)
        return unknownOption(program, extras.front()) + " (see tqx help)";
    std::vector<std::string> names;
    for (const CLI::App* command : commandsOf(program))
        names.push_back(command->get_name());
    return unknownName("command", extras.front(), {names.begin(), names.end()});
}

/// Why an option has too few or too many values.
std::string describeCount(const CLI::App& command, const std::string& text)
{
    for (const CLI::Option* option : optionsOf(command)) {
        const std::string name = option->get_name();
        if (text.rfind(name + ":", 0) != 0)
            continue;
        const size_t given = option->results().size();
        if (given > static_cast<size_t>(option->get_items_expected_max()))
            return fmt::format("{} is given {} times, but takes only one value", name, given);
        return fmt::format("{} needs a value: {}", name, option->get_type_name());
    }
    return text;
}

/// The name of the argument that is missing, and how to read standard input where that helps.
std::string describeMissing(const CLI::App& command, const std::string& text)
{
    for (const CLI::Option* option : optionsOf(command)) {
        if (option->get_positional() && option->get_required() && option->count() == 0 &&
            option->get_name(true) == "FILE") {
            return fmt::format("FILE is required, - for standard input: tqx {} -",
                               command.get_name());
        }
    }
    return text;
}

} // namespace

std::string describe(const CLI::App& program, const CLI::ParseError& error)
{
    if (program.get_subcommands().empty())
        return describeCommand(program);
    if (program.remaining_size() != 0) {
        return shortened(program.remaining().front()) +
               " is before the command, options go after the command";
    }
    const CLI::App& command = *program.get_subcommands().front();
    const std::vector<std::string> extras = program.remaining(true);
    std::string text = shortened(error.what(), longestText);
    if (dynamic_cast<const CLI::ExtrasError*>(&error) && !extras.empty()) {
        text = extras.front().rfind('-', 0) == 0
                   ? unknownOption(command, extras.front())
                   : shortened(extras.front()) + " is one argument too many";
    } else if (dynamic_cast<const CLI::ArgumentMismatch*>(&error)) {
        text = describeCount(command, text);
    } else if (dynamic_cast<const CLI::RequiredError*>(&error)) {
        text = describeMissing(command, text);
    }
    return command.get_name() + ": " + text + " (see tqx help " + command.get_name() + ")";
}

} // namespace tqx::tool
