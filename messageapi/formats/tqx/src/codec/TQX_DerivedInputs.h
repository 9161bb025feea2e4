#pragma once

#include "TQX_Layout.h"

#include <cstdint>

namespace Kor::MessageApi
{

/// A field that a derived value is computed from. Derived values may be inputs of others.
struct TQX_DerivedInput {
    uint16_t recordType; ///< of the derived value
    uint16_t row;        ///< of the derived value in its type
    uint16_t ownerType;  ///< record type that has the input
    uint16_t inputRow;   ///< of the input in that type
    uint8_t links;       ///< parent links from the derived value's record to the input's
    bool zeroIsNone;     ///< 0 means that the input is not available, whatever its facts say
};

/// The inputs of one derived value. With several types of parents there is an input for each.
struct TQX_DerivedInputs {
    const TQX_DerivedInput* first;
    const TQX_DerivedInput* last; ///< one past the last
    const TQX_DerivedInput* begin() const { return first; }
    const TQX_DerivedInput* end() const { return last; }
};

/// What the derived value in row `row` of a record type is computed from; nothing for other fields.
/// The rows live as long as the library. Never fails, and may be called from several threads.
TQX_CODEC_API TQX_DerivedInputs TQX_derivedInputs(uint32_t recordType, uint32_t row);

} // namespace Kor::MessageApi
