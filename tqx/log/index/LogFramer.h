#pragma once

#include "tqx/log/index/FramedPages.h"
#include "tqx/log/source/ByteSource.h"
#include "tqx/log/source/RandomAccess.h"
#include "tqx_log_export.h"

namespace tqx
{

/// How a log is framed. Does not affect the result.
struct FramingOptions {
    unsigned threads = 1;   ///< including the calling one; at least 1
    unsigned stretches = 0; ///< parts of the log that are framed separately; 0: one per thread
};

/// Frames the rest of a log, of which `begun` holds the first pages (or none, and no more than
/// there are), and returns all pages, linked. With several stretches, each is framed from a guessed
/// entry, and then again from its true entry until both framings meet: from there on they are
/// identical, since the only state is whether the position is inside a block. Throws SourceError
/// when the log cannot be read.
TQX_LOG_API FramedPages frameLog(const RandomAccess& log, FramedPages begun,
                                 const FramingOptions& options);

/// Frames a whole source. Apart from the result, memory is constant. `size` receives the number of
/// bytes. Throws what the source throws.
TQX_LOG_API FramedPages frameSource(ByteSource& source, FramedPages begun, uint64_t& size);

} // namespace tqx
