#pragma once

#include "commands/Command.h"
#include "io/Words.h"

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
                    Output& output, words::Limit& limit);

    std::vector<std::string> files;
    std::string target = "-";
    bool verbose = false;
};

} // namespace tqx::tool
