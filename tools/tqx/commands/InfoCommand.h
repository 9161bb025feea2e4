#pragma once

#include "commands/Command.h"
#include "options/StreamOptions.h"

namespace tqx::tool
{

/// `tqx info`: what a stream holds.
class InfoCommand : public Command
{
public:
    explicit InfoCommand(CLI::App& program);
    ExitStatus run() override;

private:
    StreamOptions m_streams;
    bool m_json = false;
};

} // namespace tqx::tool
