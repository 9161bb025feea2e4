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
    /// How far after the place a valid block is looked for.
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
    std::vector<uint8_t> bytes; ///< from the offset on, as many as a block can have
    uint64_t damage = 0;        ///< bytes from the place on that belong to no block, as far as read
    bool isCutShort = false;    ///< the input goes on where the search for a valid block ended
    std::optional<Neighbour> around; ///< the valid block that the place lies in, its begin included
    std::optional<Neighbour> following; ///< the first valid block that begins after the place

    /// Whether a block may begin at the offset: the sync characters do.
    bool hasSync() const { return bytes.size() >= 2 && bytes[0] == '$' && bytes[1] == '@'; }
};

/// Reads what is around a place of a source of which nothing has been read yet. When no sync is at
/// the place and it is in no valid block, the offset goes on to a header in the stretch before the
/// next valid one: the first that a type could have, else the first of all. Throws SourceError when
/// it cannot be read or ends before the offset.
TQX_LOG_API BlockLocation locateBlock(ByteSource& source, uint64_t offset,
                                      const Schema& schema = {});

} // namespace tqx
