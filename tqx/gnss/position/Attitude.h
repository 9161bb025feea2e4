#pragma once

#include "tqx/gnss/position/Position.h"
#include "tqx_gnss_export.h"

#include <cstdint>

namespace tqx
{

/// Whether blocks of this number have the attitude at an epoch, and nothing else.
TQX_GNSS_API bool hasAttitude(uint16_t blockNumber);

/// Completes a position by the attitude in the record of such a block. False, and nothing done,
/// when the block is of another time or has none. An attitude that the position has already stays.
TQX_GNSS_API bool addAttitude(const void* record, Position& position);

} // namespace tqx
