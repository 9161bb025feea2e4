#pragma once

#include "commands/Command.h"
#include "options/Requirement.h"
#include "options/StreamOptions.h"
#include "tqx/gnss/quality/Reference.h"

namespace tqx::tool
{

/// `tqx report`: whether the data are good.
class ReportCommand : public Command
{
public:
    explicit ReportCommand(CLI::App& program);
    ExitStatus run() override;

private:
    quality::Reference readReference() const;

    StreamOptions m_streams;
    bool m_json = false;
    bool m_isJoined = false;
    std::string m_page; ///< file to write; empty for none
    std::string m_reference;
    double m_mask = 10;
    std::string m_requirement;
};

} // namespace tqx::tool
