#pragma once

#include "tqx/log/inspect/BlockWalk.h"
#include "tqx_log_export.h"

#include <string>
#include <vector>

namespace tqx
{

/// What is shown of a piece, one text a column.
struct PieceText {
    std::string bytes;  ///< in hexadecimal, or which bits they are of the value above
    std::string name;   ///< indented
    std::string stored; ///< the value as it stands in the block
    std::string value;  ///< what it stands for, where that is more: scaled, with unit, a name
};

/// Rows for a piece of a block, several for a long run. `piece` stands in `block`.
TQX_LOG_API std::vector<PieceText> textsOf(const BlockPiece& piece, const uint8_t* block);

/// How many bytes a row shows.
constexpr uint32_t bytesPerRow = 8;

} // namespace tqx
