#pragma once

#include "commands/Command.h"
#include "tqx/simulation/Simulation.h"

namespace tqx::tool
{

/// `tqx simulate`: the log of a receiver that does not exist.
class SimulateCommand : public Command
{
public:
    explicit SimulateCommand(CLI::App& program);
    ExitStatus run() override;

private:
    void declareLength();
    void declareTrack();
    void readStart();
    void readPosition();

    simulation::SimulationSettings settings;
    CLI::Option* duration = nullptr;
    double rate = 1;
    std::string track = "static";
    std::string start = "2400:216000";
    std::string position; ///< degrees and metres, empty for the one in the settings
    std::string target = "-";
};

} // namespace tqx::tool
