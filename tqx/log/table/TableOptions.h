#pragma once

#include "tqx/log/record/FieldFilter.h"

#include <cstddef>
#include <string>

namespace tqx
{

/// What a table contains.
struct TableOptions {
    /// The fields that become columns. When it shows everything, header fields but TOW and WNc, and
    /// padding, are left out.
    FieldFilter fields;

    /// Empty: a row for each message. The path of a sub-block field, such as "Type1" or
    /// "Type1.Type2": a row for each such sub-block.
    std::string rows;

    /// Integers with a scale factor become float64 values multiplied by it; otherwise columns have
    /// the types of the wire.
    bool isScaled = true;

    /// Integers of up to 8 bits with named values become names, dictionary-encoded.
    bool isNamed = true;

    /// Values that mean "not available", and values derived from one that is not, become null.
    bool hidesDoNotUse = true;

    bool hasUtc = false;   ///< a column "utc" after "time"
    bool hasOffset = true; ///< a column "offset": of the block in its file
    bool hasFile = false;  ///< a column "file": its name

    /// Most rows of a batch, at least 1; the sub-blocks of one message stay together, however.
    size_t batchRows = 65536;

    /// A batch also ends after this many bytes of blocks, which bounds its memory where messages
    /// have many sub-blocks: columns take about two to eight times as much. At least 1.
    size_t batchBytes = size_t{8} << 20U;
};

} // namespace tqx
