#pragma once

#include "commands/Command.h"
#include "options/DescriptionOption.h"

namespace tqx
{
class Buffer;
}

namespace tqx::tool
{

/// `tqx error`: names of codec results and codes of names.
class ErrorCommand : public Command
{
public:
    explicit ErrorCommand(CLI::App& program);
    ExitStatus run() override;

private:
    void explain(Buffer& out, const std::string& item) const;

    DescriptionOption m_descriptions;
    std::vector<std::string> m_items;
    bool m_all = false;
};

} // namespace tqx::tool
