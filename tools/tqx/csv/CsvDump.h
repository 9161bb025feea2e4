#pragma once

#include "ExitStatus.h"
#include "FieldFilter.h"
#include "StreamOptions.h"

#include <string>

namespace tool
{

/// Writes the selected messages as comma separated values: to `target` when that is "-" or ends in
/// ".csv", which holds one type only, else to a file a type in the folder `target`. Throws as
/// StreamOptions::read, and ToolError when one file is to hold several types.
ExitStatus dumpCsv(StreamOptions& streams, const FieldFilter& filter, bool isStored,
                   const std::string& target);

} // namespace tool
