#pragma once

#include "TQX_Layout.h"
#include "tqx_log_export.h"

#include <cstdint>
#include <vector>

namespace tqx
{

/// A piece of a block, as found by walking along the layout.
struct BlockPiece {
    enum class Kind {
        Number,  ///< one element of a number or character field
        Run,     ///< a text, or elements of one byte each
        Bits,    ///< a bit range of the number before it
        Derived, ///< computed from other fields, without bytes of its own
        Entry,   ///< a sub-block begins
        Unknown, ///< bytes that no field describes
        Missing, ///< a field that ends beyond the block; `size` bytes would belong to it
        TooMany, ///< a counted field with more elements than there is room for
        TooLong, ///< the fields of an entry need more than its length, which is `size`
    };

    Kind kind;
    unsigned depth;                                ///< 0 in the main block
    const Kor::MessageApi::TQX_TypeLayout* type;   ///< of the block or entry it is in
    const Kor::MessageApi::TQX_FieldLayout* field; ///< null for Unknown and TooLong
    uint32_t index;                                ///< of the element or entry
    uint32_t offset;                               ///< of its first byte in the block
    uint32_t size;                                 ///< in bytes
    uint64_t stored;       ///< Number, Bits, Derived: the value's bits; signed ones sign-extended
    bool hasInputs = true; ///< Derived: whether what it is computed from is available
    bool isWhole = false;  ///< Number: element of an array that is one value, which is available
};

/// The content of a block in wire order, and the result of decoding it.
struct BlockWalk {
    std::vector<BlockPiece> pieces;
    int32_t code = 0; ///< of the failure, 0 when everything fits
};

/// Walks along a block of a type, as far as the bytes go. `record` is the decoded block, from which
/// derived values are taken; null for a block that does not decode.
TQX_LOG_API BlockWalk walkBlock(const Kor::MessageApi::TQX_TypeLayout& type, const uint8_t* bytes,
                                uint32_t size, const void* record);

} // namespace tqx
