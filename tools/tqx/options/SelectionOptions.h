#pragma once

#include "tqx/log/select/Selection.h"

#include <CLI/App.hpp>

namespace tqx::tool
{

/// The arguments by which all commands that read streams choose blocks.
class SelectionOptions
{
public:
    /// Adds --type and --not-type.
    void addTypes(CLI::App& command);

    /// Adds --from, --to, --where, --interval and --every.
    void addConditions(CLI::App& command);

    /// Their group in a help text.
    static const char* const group;

    /// Lines for the end of a help text: how times and conditions are written and what they mean.
    static const char* const notes;

    /// The selection, once the arguments are parsed.
    const SelectionRequest& getRequest() const { return m_request; }

private:
    SelectionRequest m_request;
};

} // namespace tqx::tool
