#pragma once

#include "commands/Command.h"
#include "options/StreamOptions.h"
#include "options/UnitsOption.h"

namespace tqx::tool
{

/// `tqx dump`: decoded messages as text, JSON Lines or comma separated values.
class DumpCommand : public Command
{
public:
    explicit DumpCommand(CLI::App& program);
    ExitStatus run() override;

private:
    StreamOptions m_streams;
    std::vector<std::string> m_fields;
    std::string m_target = "-";
    std::string m_format = "text";
    bool m_raw = false;
    bool m_csvSafe = false;
    bool m_degrees = false;
    bool m_utc = false;
    UnitsOption m_units;
    std::string m_rows;
};

} // namespace tqx::tool
