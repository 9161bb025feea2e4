#pragma once

#include "tqx/log/schema/Schema.h"
#include "tqx/log/source/ByteSource.h"
#include "tqx_log_export.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tqx
{

/// A place in an input, with the blocks around it.
struct BlockLocation {
    /// How far after the place to look for a valid block.
    static constexpr uint64_t reach = 1 << 20;

    /// A valid block near the place.
    struct Neighbour {
        uint64_t offset;
        uint16_t number;
        uint32_t size;
    };

    std::string file;
    uint64_t place;             ///< that was asked for
    uint64_t offset;            ///< the place, or the header in the damage that begins there
    std::vector<uint8_t> bytes; ///< from the offset on, at most the longest block
    uint64_t damage = 0;     ///< bytes from the place on that belong to no block, as far as known
    bool isCutShort = false; ///< the input goes on where the search for a valid block ended
    std::optional<Neighbour> around;    ///< the valid block that contains the place
    std::optional<Neighbour> following; ///< the first valid block that begins after the place

    /// Whether there are sync characters at the offset, so that a block may begin there.
    bool hasSync() const { return bytes.size() >= 2 && bytes[0] == '$' && bytes[1] == '@'; }
};

/// Reads what is around a place of a source from which nothing has been read yet. When the place
/// has no sync characters and is in no valid block, the offset moves on to a header before the next
/// valid block: the first one that a type could have, else the first of any kind. Throws
/// SourceError when it cannot be read or ends before the offset.
TQX_LOG_API BlockLocation locateBlock(ByteSource& source, uint64_t offset,
                                      const Schema& schema = {});

} // namespace tqx
