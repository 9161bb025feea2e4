#pragma once

#include "commands/Command.h"
#include "options/DescriptionOption.h"
#include "options/UnitsOption.h"

namespace tqx::tool
{

class Output;

/// `tqx explain`: single blocks, byte by byte.
class ExplainCommand : public Command
{
public:
    explicit ExplainCommand(CLI::App& program);
    ExitStatus run() override;

private:
    void explain(Output& output, const std::string& place);

    DescriptionOption m_descriptions;
    std::vector<std::string> m_places;
    bool m_shown = false;
    bool m_json = false;
    UnitsOption m_units;
};

} // namespace tqx::tool
