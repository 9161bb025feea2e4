#pragma once

#include "tqx/log/inspect/BlockWalk.h"
#include "tqx/log/inspect/Inspection.h"

#include <string_view>
#include <vector>

namespace tqx
{

/// Makes rows from the pieces of a walk.
class InspectionRows
{
public:
    /// `block` is what was walked; it is not used after the last call.
    explicit InspectionRows(const uint8_t* block) : m_block(block) {}

    void add(const BlockPiece& piece);

    /// The rows; nothing is added after that.
    std::vector<InspectionRow> take();

private:
    int parentOf(const BlockPiece& piece) const;
    void describe(InspectionRow& row, const BlockPiece& piece) const;

    const uint8_t* m_block;
    std::vector<InspectionRow> m_rows;
    std::vector<int> m_subBlocks; ///< rows that enclose the next piece
    int m_value = InspectionRow::none;
};

/// Characters as a JSON string, without trailing zeros.
std::string quotedText(const uint8_t* bytes, uint32_t count);

} // namespace tqx
