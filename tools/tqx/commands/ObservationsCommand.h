#pragma once

#include "commands/Command.h"
#include "options/EpochOptions.h"
#include "options/StreamOptions.h"
#include "output/TableOutput.h"

#include <string>

namespace tqx::tool
{

/// `tqx observations`: the measurements of each signal, as a long table.
class ObservationsCommand : public Command
{
public:
    explicit ObservationsCommand(CLI::App& program);
    ExitStatus run() override;

private:
    StreamOptions m_streams;
    EpochOptions m_epochs;
    TableOptions m_table;
};

} // namespace tqx::tool
