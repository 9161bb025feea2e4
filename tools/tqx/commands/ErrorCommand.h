#pragma once

#include "commands/Command.h"

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
    static void explain(Buffer& out, const std::string& item);

    std::vector<std::string> m_items;
    bool m_all = false;
};

} // namespace tqx::tool
