#pragma once

#include "commands/Command.h"
#include "options/StreamOptions.h"

#include <string>

namespace tqx::tool
{

/// `tqx cut`: selected blocks, byte for byte.
class CutCommand : public Command
{
public:
    explicit CutCommand(CLI::App& program);
    ExitStatus run() override;

private:
    StreamOptions m_streams;
    std::string m_target = "-";
};

} // namespace tqx::tool
