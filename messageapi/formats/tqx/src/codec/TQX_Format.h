#pragma once

#include "TQX_Edition.h"

#include <cstdint>

/// Figures of the format that no single block has; those that depend on its edition are in
/// TQX_Edition.h.
namespace Kor::MessageApi
{

/// The two parts of a block's ID: its number, 0 to 8191, and its revision, 0 to 7.
constexpr uint16_t TQX_lastBlockNumber = 0x1fff;
constexpr uint16_t TQX_blockNumberOf(uint16_t id)
{
    return id & TQX_lastBlockNumber;
}
constexpr uint8_t TQX_revisionOf(uint16_t id)
{
    return static_cast<uint8_t>(id >> 13U);
}

/// A day and a week of GNSS time.
constexpr uint32_t TQX_millisPerDay = 86400000;
constexpr uint32_t TQX_secondsPerWeek = 604800;
constexpr uint32_t TQX_millisPerWeek = TQX_secondsPerWeek * 1000;

/// A time of week that is not available, on the wire and in TOWc.
constexpr uint32_t TQX_noTOW = 0xffffffff;

} // namespace Kor::MessageApi
