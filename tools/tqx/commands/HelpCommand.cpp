#include "HelpCommand.h"

#include "Output.h"
#include "ToolError.h"
#include "TypeNames.h"

namespace tool
{

HelpCommand::HelpCommand(CLI::App& whole)
    : Command(whole, "help", "Show how to use a command", "  tqx help dump\n"), program(whole)
{
    app.add_option("COMMAND", topic, "Command to explain")->type_name("");
}

ExitStatus HelpCommand::run()
{
    const CLI::App* subject = topic.empty() ? &program : nullptr;
    std::vector<std::string_view> names;
    for (const CLI::App* command : program.get_subcommands([](const CLI::App*) { return true; })) {
        names.emplace_back(command->get_name());
        if (command->get_name() == topic)
            subject = command;
    }
    if (!subject)
        throw ToolError(unknownName("command", topic, names));
    Output output;
    output.getBuffer().append(subject->help(topic.empty() ? "" : program.get_name()));
    output.flush();
    return ExitStatus::Done;
}

} // namespace tool
