#pragma once

#include "tqx/gnss/observation/EpochSelection.h"

#include <CLI/App.hpp>

#include <string>

namespace tqx::tool
{

/// The arguments by which commands choose epochs, satellites and signals.
class EpochOptions
{
public:
    /// Adds --from, --to, --interval, --satellite and --signal.
    void add(CLI::App& command);

    /// Adds only --from and --to.
    void addTimes(CLI::App& command);

    /// Adds only --from, --to and --satellite.
    void addWithoutSignals(CLI::App& command);

    /// The selection. Throws DataError for invalid times.
    EpochSelection get() const;

    /// Lines for the end of a help text.
    static const char* const notes;

private:
    std::string m_from;
    std::string m_to;
    double m_interval = 0; ///< seconds
    EpochSelection m_selection;
};

} // namespace tqx::tool
