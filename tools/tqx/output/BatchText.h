#pragma once

#include "tqx/log/text/Buffer.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tqx::tool
{

/// The text of the blocks of a batch. Has parts only if it goes to several files.
struct BatchText {
    /// The text from the end of the previous part up to `end`.
    struct Part {
        uint32_t recordType; ///< of the block that it is from
        uint32_t table;      ///< of those that the type has
        size_t end;
    };

    void endPart(uint32_t recordType, uint32_t table)
    {
        parts.push_back({recordType, table, text.size()});
    }

    /// Clears the text but keeps the memory.
    void clear()
    {
        text.clear();
        parts.clear();
    }

    Buffer text;
    std::vector<Part> parts;
};

} // namespace tqx::tool
