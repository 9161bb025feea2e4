#include "commands/HelpCommand.h"

#include "io/Output.h"
#include "io/ToolError.h"
#include "reference/Reference.h"
#include "tqx/log/record/TypeNames.h"

namespace tqx::tool
{

HelpCommand::HelpCommand(CLI::App& whole)
    : Command(whole, "help", "Show how to use a command", "  tqx help dump\n"), program(whole)
{
    app.add_option("COMMAND", topic, "Command to explain")->type_name("");
    app.add_flag("--man", man, "Write the manual page")->group("");
    app.add_flag("--completion", completion, "Write the completion script for bash")->group("");
    app.add_option("--output", target, "File to write them to")->group("");
}

void HelpCommand::appendHelp(Buffer& out) const
{
    const CLI::App* subject = topic.empty() ? &program : nullptr;
    std::vector<std::string_view> names;
    for (const CLI::App* command : commandsOf(program)) {
        names.emplace_back(command->get_name());
        if (command->get_name() == topic)
            subject = command;
    }
    if (!subject)
        throw ToolError(unknownName("command", topic, names));
    const bool isProgram = subject == &program;
    // App::help() of the program would show the command that was parsed, which is this one.
    out.append(isProgram ? program.get_formatter()->make_help(&program, program.get_name(),
                                                              CLI::AppFormatMode::Normal)
                         : subject->help(program.get_name()));
}

ExitStatus HelpCommand::run()
{
    Output output(target);
    if (man)
        appendManPage(output.getBuffer(), program, program.version());
    else if (completion)
        appendCompletion(output.getBuffer(), program);
    else
        appendHelp(output.getBuffer());
    output.flush();
    return ExitStatus::Done;
}

} // namespace tqx::tool
