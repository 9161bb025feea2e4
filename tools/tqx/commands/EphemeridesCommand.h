#pragma once

#include "commands/Command.h"
#include "options/EpochOptions.h"
#include "options/StreamOptions.h"
#include "output/TableOutput.h"

#include <string>

namespace tqx::tool
{

/// `tqx ephemerides`: the content of navigation messages, each once.
class EphemeridesCommand : public Command
{
public:
    explicit EphemeridesCommand(CLI::App& program);
    ExitStatus run() override;

private:
    StreamOptions m_streams;
    EpochOptions m_selection;
    std::string m_kind = "orbits";
    TableOptions m_table;
};

} // namespace tqx::tool
