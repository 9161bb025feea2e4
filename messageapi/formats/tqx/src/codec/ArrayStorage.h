#pragma once

#include <cstdint>

namespace Kor::MessageApi
{

/// Where the entries of a record's sub-block array live. The flag directly follows the array
/// pointer; decoding, appending and releasing keep it, nobody else needs to look at it.
enum class ArrayStorage : uint8_t {
    Own,      ///< an allocation of its own
    Borrowed, ///< part of the allocation of the array that holds the owner
    Shared,   ///< an allocation of its own that also holds borrowed arrays
};

} // namespace Kor::MessageApi
