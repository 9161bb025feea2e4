#pragma once

#include "tqx/log/schema/Schema.h"

#include <CLI/CLI.hpp>

#include <optional>
#include <string>
#include <vector>

namespace tqx::tool
{

/// The argument --description: types of blocks besides the built-in ones.
class DescriptionOption
{
public:
    void add(CLI::App& command);

    /// All types; descriptions are read at the first call. Throws ToolError when a description is
    /// wrong, after reporting all other errors.
    const Schema& getSchema() const;

private:
    std::vector<std::string> m_paths;
    mutable std::optional<Schema> m_schema;
};

} // namespace tqx::tool
