#pragma once

#include "io/ExitStatus.h"
#include "options/StreamOptions.h"
#include "tqx/log/record/FieldFilter.h"

#include <string>

namespace tqx::tool
{

/// Writes the selected messages into a new SQLite database, which takes the place of `target` once
/// it is complete. `isStored` is for values as they are stored. Throws as StreamOptions::read, and
/// ToolError when `target` is standard output.
ExitStatus dumpSqlite(StreamOptions& streams, const FieldFilter& filter, bool isStored,
                      const std::string& target);

} // namespace tqx::tool
