#pragma once

#include "io/ExitStatus.h"
#include "io/Output.h"

#include <functional>
#include <string>
#include <vector>

namespace tqx::tool
{

/// Does something with each of the inputs of a command, which does not end with one that fails.
/// `action` returns whether it could be done; a SourceError of it is reported on standard error,
/// after what the output has by then. Returns Failed if one was not done. Throws whatever else
/// `action` throws.
ExitStatus forEachInput(Output& output, const std::vector<std::string>& inputs,
                        const std::function<bool(const std::string&)>& action);

} // namespace tqx::tool
