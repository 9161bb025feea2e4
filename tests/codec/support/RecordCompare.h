#pragma once

#include "TQX_codec.h"

#include <string>

/// Which members are compared.
enum class Compared {
    Reachable,  ///< all that a reader can come to, derived values and bookkeeping included
    Whole,      ///< the same and the room after the last counted element
    WireFields, ///< what is on the wire in `one`; the frame, padding and entry lengths left out
};

/// Name of the first member in which two records of a type differ, empty when there is none.
std::string firstDifference(const Kor::MessageApi::TQX_TypeLayout& type, const void* one,
                            const void* other, Compared compared);
