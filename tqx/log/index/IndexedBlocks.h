#pragma once

#include "tqx/log/index/Index.h"
#include "tqx/log/source/RandomAccess.h"
#include "tqx/log/stream/Block.h"
#include "tqx_log_export.h"

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace tqx
{

/// Selects blocks of an indexed log.
struct BlockQuery {
    std::vector<uint16_t> numbers; ///< block numbers; empty: all

    /// Blocks at or after `from` and before `to`. A block without a time takes that of the last
    /// block before it, of any type, that has one; if there is none, it is earlier than any time.
    std::optional<GnssMillis> from = std::nullopt;
    std::optional<GnssMillis> to = std::nullopt;

    /// Only blocks of these pages.
    uint32_t firstPage = 0;
    uint32_t endPage = 0xffffffff;
};

/// The selected blocks of an indexed log, in the order of the log. Reads nothing else, except for
/// the headers of a page with a block without a time when the query has a time. Used by one thread;
/// several can divide the pages.
class TQX_LOG_API IndexedBlocks
{
public:
    /// Owns neither; both must outlive the object. `log` must be the log that was indexed.
    IndexedBlocks(const Index& index, const RandomAccess& log, BlockQuery query = {});

    /// Gets the next block, whose bytes stay valid until the next call; false after the last one.
    /// Throws SourceError when the log cannot be read or has no such block where the index says.
    bool next(Block& block);

    /// The context in which the last block returned by next() decodes as it would in one pass over
    /// the whole log. The last TOW in it is only meant for this block.
    WeekContext getContext() const;

private:
    struct Selected {
        const FramedPages::Type* type;
        PageOffsets::Cursor cursor;
    };

    bool loadPage();
    bool mayHoldTime(const PageRow& row) const;
    bool isWanted(const Block& block);
    bool isInTime(std::optional<GnssMillis> time) const;
    GnssMillis timeBefore(uint16_t offset);
    Block blockAt(uint64_t offset);
    const uint8_t* bytesAt(uint64_t offset, size_t count);
    [[noreturn]] void failAt(uint64_t offset) const;

    const FramedPages& m_pages;
    const RandomAccess& m_log;
    BlockQuery m_query;
    uint64_t m_size; ///< of the log as indexed

    std::vector<Selected> m_selected;
    PageOffsets::Cursor m_weekStarts;
    std::vector<Selected> m_every; ///< all types, once they are needed

    uint32_t m_page;                 ///< the next one
    uint32_t m_current;              ///< the one that `offsets` are of
    std::vector<uint16_t> m_offsets; ///< wanted blocks of the page
    size_t m_position = 0;           ///< the next one of them
    uint16_t m_lastOffset = 0;       ///< of the last block gotten
    PageOffsets::Page m_starts = {}; ///< weeks that begin in the page

    /// All blocks of the page and the time that each of them counts as; made when needed.
    std::vector<std::pair<uint16_t, GnssMillis>> m_times;

    std::vector<uint8_t> m_buffer; ///< for logs that are not in memory
    uint64_t m_bufferStart = 0;
    size_t m_bufferSize = 0;
};

} // namespace tqx
