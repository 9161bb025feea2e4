#pragma once

#include "Command.h"
#include "StreamOptions.h"

namespace tool
{

/// `tqx info`: what a stream holds.
class InfoCommand : public Command
{
public:
    explicit InfoCommand(CLI::App& program);
    ExitStatus run() override;

private:
    StreamOptions streams;
    bool json = false;
};

} // namespace tool
