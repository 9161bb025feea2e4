#pragma once

#include "tqx/simulation/Simulation.h"

#include <CLI/App.hpp>

namespace tqx::tool
{

/// Adds the options of `tqx simulate` for its inputs and
/// its tracking: --pulses and --hidden-slips.
void addInputOptions(CLI::App& command, simulation::SimulationSettings& settings);

} // namespace tqx::tool
