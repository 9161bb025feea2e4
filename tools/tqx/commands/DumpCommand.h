#pragma once

#include "commands/Command.h"
#include "options/StreamOptions.h"

namespace tqx::tool
{

/// `tqx dump`: decoded messages as text, JSON Lines or comma separated values.
class DumpCommand : public Command
{
public:
    explicit DumpCommand(CLI::App& program);
    ExitStatus run() override;

private:
    StreamOptions streams;
    std::vector<std::string> fields;
    std::string target = "-";
    std::string format = "text";
    bool raw = false;
    bool csvSafe = false;
    bool degrees = false;
    bool utc = false;
    std::string units = "words";
    std::string rows;
};

} // namespace tqx::tool
