#pragma once

#include <cstdint>

/// Figures of the format that no single block has.
namespace Kor::MessageApi
{

/// The result of the codec for a block number without type, TQX_ERR_INVALID_MESSAGE.
constexpr int32_t TQX_invalidMessage = -6072;

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

/// A week of GNSS time.
constexpr uint32_t TQX_secondsPerWeek = 604800;
constexpr uint32_t TQX_millisPerWeek = TQX_secondsPerWeek * 1000;

} // namespace Kor::MessageApi
