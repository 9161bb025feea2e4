#pragma once

#include "commands/Command.h"
#include "options/DescriptionOption.h"

#include <string>
#include <vector>

namespace tqx::tool
{

class Output;

/// `tqx index`: saves where the blocks of logs are.
class IndexCommand : public Command
{
public:
    explicit IndexCommand(CLI::App& program);
    ExitStatus run() override;

private:
    bool index(Output& output, const std::string& file) const;

    DescriptionOption m_descriptions;
    std::vector<std::string> m_files;
    bool m_onlyShow = false;
    bool m_list = false;
};

} // namespace tqx::tool
