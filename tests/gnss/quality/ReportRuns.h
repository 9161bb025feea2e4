#pragma once

#include "ToolRuns.h"

#include <nlohmann/json.hpp>

#include <functional>
#include <string>

/// The logs of `tqx report --json` with these arguments.
nlohmann::json reportsOf(const ToolRuns& runs, const std::string& arguments);

/// Writes the blocks of a log again, each changed as JSON of raw values: `change` gets the name
/// and the fields.
void rewrite(const ToolRuns& runs, const std::string& from, const std::string& to,
             const std::function<void(const std::string& name, nlohmann::json& fields)>& change);
