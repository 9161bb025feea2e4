#pragma once

#include "Command.h"
#include "StreamOptions.h"

#include <string>

namespace tool
{

/// `tqx cut`: selected blocks, byte for byte.
class CutCommand : public Command
{
public:
    explicit CutCommand(CLI::App& program);
    ExitStatus run() override;

private:
    StreamOptions streams;
    std::string target = "-";
};

} // namespace tool
