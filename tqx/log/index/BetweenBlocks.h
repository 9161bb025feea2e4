#pragma once

#include "tqx/log/index/Index.h"
#include "tqx/log/source/RandomAccess.h"
#include "tqx/log/stream/BlockStream.h"
#include "tqx/log/stream/StreamListener.h"
#include "tqx_log_export.h"

namespace tqx
{

/// Reports the neighbours of the blocks in an indexed log and its damage to `listener` (which may
/// be null), in the order of the log and just as a BlockStream that reads all of it, and returns
/// what that counts; `undecodable` is 0. Reads only the bytes that belong to no block. `log` must
/// be what was indexed. Throws SourceError when it cannot be read, and what the listener throws.
TQX_LOG_API StreamCounts reportBetweenBlocks(const Index& index, const RandomAccess& log,
                                             StreamListener* listener);

} // namespace tqx
