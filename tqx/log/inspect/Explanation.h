#pragma once

#include "tqx/log/inspect/BlockLocator.h"
#include "tqx/log/text/Buffer.h"
#include "tqx_log_export.h"

namespace tqx
{

/// Appends what stands at a place byte by byte: a head line, a row for each value with its place in
/// the file and in the block, its bytes, its name, the stored number and what that stands for, and
/// what is wrong with the block if anything is. Of damage without a header only the first bytes are
/// shown. The place must have sync characters or be in no sound block.
TQX_LOG_API void appendExplanation(Buffer& out, const BlockLocation& location);

/// Why there is nothing to explain at a place inside a sound block without sync characters, and
/// where to look instead.
TQX_LOG_API std::string describeNoBlock(const BlockLocation& location);

} // namespace tqx
