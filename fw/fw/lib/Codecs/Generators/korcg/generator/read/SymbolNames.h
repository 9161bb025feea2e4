#pragma once

#include "model/Model.h"
#include "read/YamlMap.h"

namespace korcg::generator
{

/// Reads one table of named values: a map `{0: "No", 1: "Yes"}`, or a list of single values
/// `{value, name}` and ranges `{from, to, name, start}` whose name has one `%d` or `%02d` that
/// counts from `start` (`from` when it is left out).
SymbolTable readSymbolTable(const ReadContext& context, const std::string& name,
                            const YAML::Node& node);

} // namespace korcg::generator
