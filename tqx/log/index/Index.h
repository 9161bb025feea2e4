#pragma once

#include "tqx/log/index/FramedPages.h"
#include "tqx/log/index/LogFramer.h"
#include "tqx/log/schema/Schema.h"
#include "tqx/log/stream/BlockStream.h"
#include "tqx/log/stream/WeekContext.h"
#include "tqx/log/time/GnssTime.h"
#include "tqx_log_export.h"

#include "TQX_codec.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tqx
{

/// Where the blocks of a log are, by type and by time, and which bytes belong to no block:
/// everything that one pass over the log finds, in about 2.5 bytes per block. Work on a log can be
/// divided by pages of 64 kB.
///
///     FileAccess log("day.tqx");
///     const Index index = Index::build(log);
///     IndexedBlocks fixes(index, log, {{4007}});
///     for (Block block; fixes.next(block);)
///         use(block);
///
/// An index does not refer to the log. Any number of threads may use the same one at the same time.
class TQX_LOG_API Index
{
public:
    /// Frames the whole log. Throws SourceError when it cannot be read. `pageSize` is at least 16
    /// and at most the default.
    static Index build(const RandomAccess& log, const FramingOptions& options = {},
                       uint32_t pageSize = FramedPages::defaultPageSize);

    /// Frames a source from its current position to its end. Apart from the index, memory is
    /// constant. Throws what the source throws.
    static Index build(ByteSource& source);

    /// Extends the index to a log that has grown: what is known is kept, except for what the old
    /// end had cut off. A log that has shrunk is indexed anew. Throws SourceError when the log
    /// cannot be read; the index is then unchanged. If `log` does not begin with what was indexed,
    /// the content of the index is unspecified.
    void extend(const RandomAccess& log, const FramingOptions& options = {});

    /// Makes blocks of the added types of a schema move the week, too, as BlockStream::setSchema()
    /// does. `log` must be what was indexed; of it, the pages that have such blocks are read. Only
    /// once the index is complete: extend() knows only the built-in types. Throws SourceError when
    /// the log cannot be read.
    void follow(const Schema& schema, const RandomAccess& log);

    /// Bytes that were indexed.
    uint64_t getLogSize() const { return m_size; }

    /// What framing counted. Nothing is decoded and no neighbours of blocks are recognised, so
    /// `undecodable` is 0 and all bytes that belong to no block count as dropped.
    StreamCounts getCounts() const;

    struct Type {
        uint16_t number; ///< of its blocks
        uint64_t blocks;
    };

    /// Types of which the log has blocks, by ascending number.
    std::vector<Type> getTypes() const;

    /// Blocks of a type.
    uint64_t getCount(uint16_t number) const;

    /// The earliest and the latest time of any block; nothing when no block has one.
    std::optional<GnssMillis> getFirstTime() const;
    std::optional<GnssMillis> getLastTime() const;

    /// Offsets of complete candidates with a bad checksum, of candidates that claim fewer bytes
    /// than a header has, and of the blocks that decoding takes to begin a week; all ascending.
    std::vector<uint64_t> getChecksumErrors() const;
    std::vector<uint64_t> getInvalidLengths() const;
    std::vector<uint64_t> getWeekStarts() const;

    /// Calls `visit` for each run of bytes that belong to no block, from the first to the last.
    /// reportBetweenBlocks() reports what is well-formed in them. The gaps carry `file` as their
    /// file name.
    void visitGaps(const std::function<void(const StreamGap&)>& visit,
                   const std::string& file = {}) const;

    /// Pages of the log. A block belongs to the page that it begins in.
    uint32_t getPageCount() const { return m_pages.getEndPage(); }

    /// Offset at which the first block of a page can begin; for getPageCount() the end of the log.
    uint64_t getPageEntry(uint32_t page) const { return m_pages.entryOf(page); }

    /// The decoding context at the start of a page.
    WeekContext getPageContext(uint32_t page) const;

    /// The whole content, for the readers and writers in this library.
    const FramedPages& getPages() const { return m_pages; }

    /// Makes an index from pages that were framed or loaded; they must be linked.
    Index(FramedPages framed, uint64_t logSize);

private:
    std::vector<uint64_t> listOf(FramedPages::Mark mark) const;

    FramedPages m_pages;
    uint64_t m_size;
};

} // namespace tqx
