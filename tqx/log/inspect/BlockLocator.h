#pragma once

#include "tqx/log/source/ByteSource.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tqx
{

/// A place in an input, with the blocks around it.
struct BlockLocation {
    /// A sound block near the place.
    struct Neighbour {
        uint64_t offset;
        uint16_t number;
        uint32_t size;
    };

    std::string file;
    uint64_t offset;
    std::vector<uint8_t> bytes;      ///< from the place on, as many as a block can have
    std::optional<Neighbour> around; ///< the sound block that the place lies in, its begin included
    std::optional<Neighbour> following; ///< the first sound block that begins behind the place

    /// Whether a block may begin here: the sync characters do.
    bool hasSync() const { return bytes.size() >= 2 && bytes[0] == '$' && bytes[1] == '@'; }
};

/// Reads what is around an offset of a source of which nothing has been read yet. Throws
/// SourceError when it cannot be read or ends before the offset.
BlockLocation locateBlock(ByteSource& source, uint64_t offset);

} // namespace tqx
