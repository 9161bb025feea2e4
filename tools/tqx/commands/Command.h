#pragma once

#include "io/ExitStatus.h"

#include <CLI/App.hpp>

#include <memory>
#include <string>
#include <vector>

namespace tqx::tool
{

/// One command of the program. Its constructor declares its arguments.
class Command
{
public:
    virtual ~Command() = default;
    Command(const Command&) = delete;
    Command& operator=(const Command&) = delete;

    /// Runs the command. Throws ToolError, ClosedPipe.
    virtual ExitStatus run() = 0;

    /// The command as declared to the argument parser.
    CLI::App& getApp() const { return m_app; }

protected:
    /// `examples` are lines for the end of the help text.
    Command(CLI::App& program, const std::string& name, const std::string& description,
            const std::string& examples);

    CLI::App& m_app;
};

/// All commands, in the order of the help text.
std::vector<std::unique_ptr<Command>> makeCommands(CLI::App& program);

} // namespace tqx::tool
