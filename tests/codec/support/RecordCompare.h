#pragma once

#include "TQX_codec.h"

#include <string>

/// Which members are compared.
enum class Compared {
    Everything,   ///< all that is defined, derived values and bookkeeping included
    Reachable,    ///< and the counted elements of fields that the records do not hold
    Whole,        ///< and the room behind the last counted element
    AfterFailure, ///< the same, but for elements of counted fields: decoding may have broken off
    WireFields, ///< what stands on the wire in `one`; the frame, padding and entry lengths left out
};

/// Name of the first member in which two records of a type differ, empty when there is none.
/// Unless they are asked for, fields that `one` does not hold, and what stands behind the last
/// counted element, are no part of the comparison.
std::string firstDifference(const Kor::MessageApi::TQX_TypeLayout& type, const void* one,
                            const void* other, Compared compared);
