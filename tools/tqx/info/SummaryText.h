#pragma once

#include "BlockStream.h"
#include "Buffer.h"
#include "StreamSummary.h"

#include <string>
#include <vector>

namespace tool
{

/// The names of the inputs, "3 files, a to c" when they are many.
std::string headOf(const std::vector<std::string>& names);

/// Appends a summary for people: totals, a table of the types, then gaps, damage and what did not
/// decode, the first few places of each.
void appendSummaryText(Buffer& out, const BlockStream& stream, const StreamSummary& summary);

/// Appends a summary as one JSON object in a line.
void appendSummaryJson(Buffer& out, const BlockStream& stream, const StreamSummary& summary);

} // namespace tool
