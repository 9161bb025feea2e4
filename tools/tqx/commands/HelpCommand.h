#pragma once

#include "commands/Command.h"

namespace tqx
{
class Buffer;
}

namespace tqx::tool
{

/// `tqx help`: help for the program or a command. Hidden options write the manual page and the
/// completion script during the build.
class HelpCommand : public Command
{
public:
    explicit HelpCommand(CLI::App& program);
    ExitStatus run() override;

private:
    void appendHelp(Buffer& out) const;

    const CLI::App& m_program;
    std::string m_topic;
    std::string m_target = "-";
    bool m_man = false;
    bool m_completion = false;
};

} // namespace tqx::tool
