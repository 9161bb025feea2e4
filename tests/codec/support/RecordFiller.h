#pragma once

#include "TQX_codec.h"

#include <cstdint>
#include <functional>

/// Values for the fields of a record: called with the number of bytes that are wanted.
using ValueSource = std::function<uint64_t(unsigned bytes)>;

struct FillOptions {
    unsigned largestCount = 4; ///< entries of a sub-block array, elements of a counted field
    /// Counts of numbers and characters, and entry lengths, are what the source says; otherwise
    /// counts keep to the capacity and lengths are left to the encoder.
    bool trustSource = false;
};

/// Fills an initialised main record: every wire field gets a value, arrays are appended to. The
/// revision is set as given, the rest of the ID is left to the encoder.
void fillRecord(const Kor::MessageApi::TQX_TypeLayout& type, void* record, unsigned revision,
                const FillOptions& options, const ValueSource& next);

/// Appends `elements` elements to every sub-block array of an initialised or decoded record, and to
/// those of the new elements, as far as the counts go.
void appendToAll(const Kor::MessageApi::TQX_TypeLayout& type, void* record, unsigned elements);
