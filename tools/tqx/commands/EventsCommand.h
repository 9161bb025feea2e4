#pragma once

#include "commands/Command.h"
#include "options/EpochOptions.h"
#include "options/StreamOptions.h"

#include <string>

namespace tqx::tool
{

/// `tqx events`: the pulses on the inputs of the receiver, with position and attitude.
class EventsCommand : public Command
{
public:
    explicit EventsCommand(CLI::App& program);
    ExitStatus run() override;

private:
    StreamOptions m_streams;
    EpochOptions m_times;
    std::string m_format = "csv";
    std::string m_target = "-";
};

} // namespace tqx::tool
