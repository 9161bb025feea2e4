#pragma once

#include "io/ExitStatus.h"
#include "options/InputStream.h"

namespace tqx::tool
{

/// For a stream that has ended without a block, reports what its inputs seem to be. Returns Failed
/// when one is not data from a receiver, which is reported even if `isQuiet`; Done otherwise, and
/// for any other stream.
ExitStatus reportNoBlocks(const InputStream& stream, bool isQuiet);

} // namespace tqx::tool
