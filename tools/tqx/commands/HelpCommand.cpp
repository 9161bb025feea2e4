#include "HelpCommand.h"

#include "Output.h"
#include "ToolError.h"
#include "TypeNames.h"

namespace tool
{

HelpCommand::HelpCommand(CLI::App& whole)
    : Command(whole, "help", "Show how to use a command", "  tqx help dump\n"), program(whole)
{
    app.add_option("COMMAND", topic, "Command to explain");
}

ExitStatus HelpCommand::run()
{
    const CLI::App* subject = topic.empty() ? &program : program.get_subcommand_no_throw(topic);
    if (!subject) {
        std::vector<std::string> names;
        for (const CLI::App* command : program.get_subcommands({}))
            names.push_back(command->get_name());
        throw ToolError(unknownName("command", topic, {names.begin(), names.end()}));
    }
    Output output;
    output.getBuffer().append(
        subject->help(topic.empty() ? program.get_name() : program.get_name() + " " + topic));
    output.flush();
    return ExitStatus::Done;
}

} // namespace tool
