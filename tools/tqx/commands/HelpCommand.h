#pragma once

#include "Command.h"

namespace tool
{

/// `tqx help [COMMAND]`: the help text of the program or of one command.
class HelpCommand : public Command
{
public:
    explicit HelpCommand(CLI::App& program);
    ExitStatus run() override;

private:
    CLI::App& program;
    std::string topic;
};

} // namespace tool
