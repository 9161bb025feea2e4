#pragma once

#include "tqx/log/time/GnssTime.h"
#include "tqx/simulation/Faults.h"

#include <CLI/App.hpp>

#include <string>
#include <vector>

namespace tqx::tool
{

/// The arguments for faults in simulated logs.
class FaultOptions
{
public:
    /// Adds --fault and --truth.
    void add(CLI::App& command);

    /// The requested faults. Throws ToolError for bad arguments.
    std::vector<simulation::Fault> get() const;

    /// Writes the file of --truth, if given: the faults with their times and the number of epochs
    /// in which they had an effect. Throws ToolError.
    void writeTruth(const std::vector<simulation::Fault>& faults, GnssMillis start) const;

private:
    std::vector<std::string> m_texts;
    std::string m_truth;
};

} // namespace tqx::tool
