#pragma once

#include "commands/Command.h"

namespace tqx
{
class LineEncoder;
}

namespace tqx::tool
{

class Output;
class Progress;

/// `tqx encode`: JSON Lines of stored values made into blocks.
class EncodeCommand : public Command
{
public:
    explicit EncodeCommand(CLI::App& program);
    ExitStatus run() override;

private:
    bool encodeFile(const std::string& path, LineEncoder& encoder, Progress& progress,
                    Output& output);

    std::vector<std::string> files;
    std::string target = "-";
};

} // namespace tqx::tool
