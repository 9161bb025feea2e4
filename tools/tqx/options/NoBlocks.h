#pragma once

#include "io/ExitStatus.h"
#include "options/InputStream.h"

namespace tqx::tool
{

/// Of a stream that has ended without a block: says what its inputs seem to be. Returns Failed when
/// one is nothing that a receiver sends, which is said even if `isQuiet`; Done otherwise, and for
/// any other stream.
ExitStatus reportNoBlocks(const InputStream& stream, bool isQuiet);

} // namespace tqx::tool
