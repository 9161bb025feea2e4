#include "options/SimulatedInputs.h"

#include "options/Numbers.h"

namespace tqx::tool
{

void addInputOptions(CLI::App& command, simulation::SimulationSettings& settings)
{
    addReal(command, "--pulses", settings.pulsePeriod, 0.001, 1e6, "seconds",
            "Time from one pulse of a camera on an event input to the next")
        ->type_name("SECONDS")
        ->default_str("");
    command.add_flag("--hidden-slips", settings.receiver.hidesSlips,
                     "Do not report the slips of --slips: lock times and flags continue");
}

} // namespace tqx::tool
