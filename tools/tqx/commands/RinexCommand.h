#pragma once

#include "commands/Command.h"
#include "options/EpochOptions.h"
#include "options/StreamOptions.h"

#include <string>

namespace tqx::tool
{

/// `tqx rinex`: observation and navigation files for other programs.
class RinexCommand : public Command
{
public:
    explicit RinexCommand(CLI::App& program);
    ExitStatus run() override;

private:
    StreamOptions m_streams;
    EpochOptions m_epochs;
    std::string m_version = "3.05";
    std::string m_folder = ".";
    std::string m_marker;
    std::string m_observer;
    std::string m_agency;
    bool m_isCompressed = false;
};

} // namespace tqx::tool
