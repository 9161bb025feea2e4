#pragma once

#include "commands/Command.h"
#include "options/DescriptionOption.h"
#include "options/UnitsOption.h"

namespace tqx
{
class Buffer;
}

namespace tqx::tool
{

/// `tqx types`: the catalogue of types and their layouts.
class TypesCommand : public Command
{
public:
    explicit TypesCommand(CLI::App& program);
    ExitStatus run() override;

private:
    void appendJson(Buffer& out) const;
    void appendFields(Buffer& out) const;
    void appendLayouts(Buffer& out) const;

    DescriptionOption m_descriptions;
    std::vector<std::string> m_names;
    bool m_json = false;
    bool m_fields = false;
    UnitsOption m_units;
};

} // namespace tqx::tool
