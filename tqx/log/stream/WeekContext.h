#pragma once

#include "TQX_Context.h"
#include "tqx/log/stream/Block.h"
#include "tqx_log_export.h"

#include <cstdint>

namespace tqx
{

class Schema;

/// The state that decoding carries from block to block, for readers that do not decode every block.
/// A context that it is applied to decodes like one that has decoded every block before, with all
/// types enabled.
struct TQX_LOG_API WeekContext {
    uint8_t weekCounter = 0;
    uint32_t lastTow = 0;

    /// Does not change which types are enabled.
    void applyTo(Kor::MessageApi::TQX_Context_s& context) const
    {
        context.weekCounter = weekCounter;
        context.lastTOW = lastTow;
    }

    /// Advances by a block as decoding does: by every block of a built-in type that is long enough
    /// for a TOW, whether it decodes or not. Returns whether a week begins with it.
    bool follow(const Block& block);

    /// The same for blocks of all types of a schema.
    bool follow(const Block& block, const Schema& schema);

    /// The same for a block whose type is known to the caller, whatever its number.
    bool followKnown(const Block& block);
};

} // namespace tqx
