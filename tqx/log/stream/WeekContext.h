#pragma once

#include "TQX_Context.h"
#include "tqx/log/stream/Block.h"
#include "tqx_log_export.h"

#include <cstdint>

namespace tqx
{

class Schema;

/// What decoding carries from block to block, for blocks that are not all decoded. A context that
/// it is applied to decodes as one that has decoded every block before, with all types enabled.
struct TQX_LOG_API WeekContext {
    uint8_t weekCounter = 0;
    uint32_t lastTow = 0;

    /// Leaves which types are enabled as it is.
    void applyTo(Kor::MessageApi::TQX_Context_s& context) const
    {
        context.weekCounter = weekCounter;
        context.lastTOW = lastTow;
    }

    /// Goes on by a block as decoding does it: by every block of a built type that is long enough
    /// for a TOW, whether it decodes or not. Returns whether a week begins with it.
    bool follow(const Block& block);

    /// Likewise by blocks of all types of a schema.
    bool follow(const Block& block, const Schema& schema);

    /// Likewise by a block of which the caller knows that its type is known.
    bool followKnown(const Block& block);
};

} // namespace tqx
