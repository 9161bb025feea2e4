#include "commands/HelpCommand.h"

#include "io/Output.h"
#include "io/ToolError.h"
#include "reference/Reference.h"
#include "tqx/log/record/TypeNames.h"

namespace tqx::tool
{

HelpCommand::HelpCommand(CLI::App& whole)
    : Command(whole, "help", "Show how to use a command", "  tqx help dump\n"), m_program(whole)
{
    m_app.add_option("COMMAND", m_topic, "Command to explain")->type_name("");
    m_app.add_flag("--man", m_man, "Write the manual page")->group("");
    m_app.add_flag("--completion", m_completion, "Write the completion script for bash")->group("");
    m_app.add_option("--output", m_target, "File to write them to")->group("");
}

void HelpCommand::appendHelp(Buffer& out) const
{
    const CLI::App* subject = m_topic.empty() ? &m_program : nullptr;
    std::vector<std::string_view> names;
    for (const CLI::App* command : commandsOf(m_program)) {
        names.emplace_back(command->get_name());
        if (command->get_name() == m_topic)
            subject = command;
    }
    if (!subject)
        throw ToolError(unknownName("command", m_topic, names));
    const bool isProgram = subject == &m_program;
    // App::help() of the program would show the parsed command, which is this one.
    out.append(isProgram ? m_program.get_formatter()->make_help(&m_program, m_program.get_name(),
                                                                CLI::AppFormatMode::Normal)
                         : subject->help(m_program.get_name()));
}

ExitStatus HelpCommand::run()
{
    Output output(m_target);
    if (m_man) {
        appendManPage(output.getBuffer(), m_program, m_program.version());
    } else if (m_completion) {
        appendCompletion(output.getBuffer(), m_program);
    } else {
        appendHelp(output.getBuffer());
    }
    output.flush();
    return ExitStatus::Done;
}

} // namespace tqx::tool
