#pragma once

#include "commands/Command.h"
#include "options/FaultOptions.h"
#include "tqx/simulation/Simulation.h"

namespace tqx::tool
{

/// `tqx simulate`: the log of a simulated receiver.
class SimulateCommand : public Command
{
public:
    explicit SimulateCommand(CLI::App& program);
    ExitStatus run() override;

private:
    void declareLength();
    void declareTrack();
    void declareReceiver();
    void readReceiver();
    void readStart();
    void readPosition();

    simulation::SimulationSettings m_settings;
    FaultOptions m_faults;
    CLI::Option* m_duration = nullptr;
    double m_rate = 1;
    std::string m_track = "static";
    std::string m_start = "2400:216000";
    std::string m_position; ///< degrees and metres, empty for the one in the settings
    std::vector<std::string> m_systems = {"gps", "glonass", "galileo", "beidou"};
    CLI::Option* m_clockDrift = nullptr;
    double m_partsPerMillion = 0;
    std::string m_target = "-";
};

} // namespace tqx::tool
