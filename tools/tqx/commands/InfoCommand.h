#pragma once

#include "commands/Command.h"
#include "options/StreamOptions.h"

namespace tqx::tool
{

class Output;

/// `tqx info`: the content of a stream.
class InfoCommand : public Command
{
public:
    explicit InfoCommand(CLI::App& program);
    ExitStatus run() override;

private:
    ExitStatus showEach(Output& output);

    StreamOptions m_streams;
    bool m_json = false;
    bool m_isEach = false;
};

} // namespace tqx::tool
