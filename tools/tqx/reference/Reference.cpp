#include "reference/Reference.h"

namespace tqx::tool
{

std::vector<const CLI::App*> commandsOf(const CLI::App& program)
{
    return program.get_subcommands(
        [](const CLI::App* command) { return !command->get_group().empty(); });
}

std::vector<const CLI::Option*> optionsOf(const CLI::App& command)
{
    return command.get_options(
        [](const CLI::Option* option) { return !option->get_group().empty(); });
}

} // namespace tqx::tool
