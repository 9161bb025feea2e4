#pragma once

#include "io/ExitStatus.h"
#include "io/Output.h"

#include <functional>
#include <string>
#include <vector>

namespace tqx::tool
{

/// Runs `action` on each input of a command, continuing after one that fails. `action` returns
/// whether it succeeded; a SourceError from it is reported on standard error, after the output so
/// far. Returns Failed if any failed. Throws whatever else `action` throws.
ExitStatus forEachInput(Output& output, const std::vector<std::string>& inputs,
                        const std::function<bool(const std::string&)>& action);

} // namespace tqx::tool
