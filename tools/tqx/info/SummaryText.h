#pragma once

#include "BlockStream.h"
#include "Buffer.h"
#include "StreamSummary.h"

#include <string>

namespace tool
{

/// Appends a summary for people: totals, then a table of the types, then what did not decode.
void appendSummaryText(Buffer& out, const std::string& name, const StreamCounts& counts,
                       const StreamSummary& summary);

/// Appends a summary as one JSON object in a line.
void appendSummaryJson(Buffer& out, const std::string& name, const StreamCounts& counts,
                       const StreamSummary& summary);

} // namespace tool
