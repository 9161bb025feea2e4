#pragma once

#include "Command.h"
#include "Simulation.h"

namespace tool
{

/// `tqx simulate`: the log of a receiver that does not exist.
class SimulateCommand : public Command
{
public:
    explicit SimulateCommand(CLI::App& program);
    ExitStatus run() override;

private:
    SimulationSettings settings;
    double rate = 1;
    std::string target = "-";
};

} // namespace tool
