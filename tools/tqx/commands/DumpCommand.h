#pragma once

#include "Command.h"
#include "StreamOptions.h"

namespace tool
{

/// `tqx dump`: decoded messages as text or JSON Lines.
class DumpCommand : public Command
{
public:
    explicit DumpCommand(CLI::App& program);
    ExitStatus run() override;

private:
    enum class Format { Text, JsonLines };

    StreamOptions streams;
    std::vector<std::string> fields;
    std::string target = "-";
    Format format = Format::Text;
    bool raw = false;
};

} // namespace tool
