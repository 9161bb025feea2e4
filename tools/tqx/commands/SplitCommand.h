#pragma once

#include "commands/Command.h"
#include "options/StreamOptions.h"
#include "output/PartFiles.h"

#include <string>

namespace tqx::tool
{

/// `tqx split`: the blocks of a stream in several files.
class SplitCommand : public Command
{
public:
    explicit SplitCommand(CLI::App& program);
    ExitStatus run() override;

private:
    StreamOptions m_streams;
    PartLimits m_limits;
    std::string m_target = ".";
};

} // namespace tqx::tool
