#pragma once

#include "options/InputStream.h"
#include "tqx/log/summary/StreamSummary.h"
#include "tqx/log/text/Buffer.h"

#include <string>
#include <vector>

namespace tqx::tool
{

/// How many gaps and outages are listed one by one.
constexpr size_t mostListed = 100000;

/// Appends a summary for people: totals, a table of the types, then gaps, damage and what did not
/// decode, the first few places of each.
void appendSummaryText(Buffer& out, const InputStream& stream, const StreamSummary& summary);

/// Appends a table of what came between the blocks, by kind and type; nothing when there is none.
/// Shares are of `bytes`.
void appendNeighbourTable(Buffer& out, const NeighbourSummary& neighbours, uint64_t bytes);

/// Appends a summary as one JSON object in a line.
void appendSummaryJson(Buffer& out, const InputStream& stream, const StreamSummary& summary);

} // namespace tqx::tool
