#pragma once

#include "tqx/gnss/quality/Reference.h"
#include "tqx/log/stream/BlockStream.h"

#include <vector>

namespace tqx::tool
{

/// The positions of the best source of a log, in ascending order of their times; none when it has
/// no positions. Throws what the stream throws.
std::vector<quality::Reference::TimedPlace> readReferenceTrack(BlockStream& stream);

} // namespace tqx::tool
