#pragma once

#include "tqx/gnss/position/Position.h"
#include "tqx_gnss_export.h"

#include <cstdint>

namespace tqx
{

/// Whether blocks of this number have dilutions of precision.
TQX_GNSS_API bool hasDilution(uint16_t blockNumber);

/// Adds the dilutions of precision in the record of such a block to a position. False, with nothing
/// done, when the block is of another time or has none.
TQX_GNSS_API bool addDilution(const void* record, Position& position);

} // namespace tqx
