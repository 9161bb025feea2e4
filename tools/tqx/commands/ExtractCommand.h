#pragma once

#include "commands/Command.h"
#include "options/StreamOptions.h"

#include <string>

namespace tqx::tool
{

/// `tqx extract`: the correction messages that a receiver received, or what came between blocks.
class ExtractCommand : public Command
{
public:
    explicit ExtractCommand(CLI::App& program);
    ExitStatus run() override;

private:
    StreamOptions m_streams;
    std::string m_mode;    ///< format of corrections
    std::string m_between; ///< kind of neighbours instead
    std::string m_target = "-";
};

} // namespace tqx::tool
