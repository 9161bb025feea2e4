#pragma once

#include "commands/Command.h"

namespace tqx
{
class Buffer;
}

namespace tqx::tool
{

/// `tqx help`: help of the program or of a command. Options that help does not show write the
/// manual page and the completion script while the program is built.
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
