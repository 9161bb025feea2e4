#pragma once

#include "io/ExitStatus.h"
#include "options/StreamOptions.h"
#include "tqx/log/record/FieldFilter.h"
#include "tqx/log/write/CsvTable.h"

#include <string>

namespace tqx::tool
{

/// Writes the selected messages as comma separated values: to `target` when that is "-" or ends in
/// ".csv", which holds one type only, else to one file per type in the folder `target`. Throws as
/// StreamOptions::read, and ToolError when one file is to hold several types or when an input would
/// be written over.
ExitStatus dumpCsv(StreamOptions& streams, const FieldFilter& filter, const CsvStyle& style,
                   const std::string& target);

} // namespace tqx::tool
