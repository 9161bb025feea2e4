#pragma once

#include "commands/Command.h"
#include "options/StreamOptions.h"

#include <string>

namespace tqx::tool
{

/// `tqx extract`: the correction messages that a receiver has received, or what came between
/// blocks.
class ExtractCommand : public Command
{
public:
    explicit ExtractCommand(CLI::App& program);
    ExitStatus run() override;

private:
    StreamOptions streams;
    std::string mode;    ///< format of corrections
    std::string between; ///< kind of neighbours instead
    std::string target = "-";
};

} // namespace tqx::tool
