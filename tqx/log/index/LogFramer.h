#pragma once

#include "tqx/log/index/FramedPages.h"
#include "tqx/log/source/ByteSource.h"
#include "tqx/log/source/RandomAccess.h"
#include "tqx_log_export.h"

namespace tqx
{

/// How a log is framed. Never changes what comes out.
struct FramingOptions {
    unsigned threads = 1;   ///< that frame at the same time, the calling one included; at least 1
    unsigned stretches = 0; ///< that the log is cut into; 0: as many as threads
};

/// Frames the rest of a log, of which `begun` holds the first pages (or none, and no more than
/// there are), and returns all pages, linked. With several stretches each of them is framed from a
/// guess of where it is entered, and from its start again until both framings meet: from there they
/// are the same for ever, for all that matters of the state is whether it is inside a block. Throws
/// SourceError when the log cannot be read.
TQX_LOG_API FramedPages frameLog(const RandomAccess& log, FramedPages begun,
                                 const FramingOptions& options);

/// Frames all that a source has, in constant memory but for what is returned. `size` receives the
/// number of its bytes. Throws what the source throws.
TQX_LOG_API FramedPages frameSource(ByteSource& source, FramedPages begun, uint64_t& size);

} // namespace tqx
