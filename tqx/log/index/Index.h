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

/// Where the blocks of a log are, by type and by time, and what in it belongs to no block: all that
/// one pass over the log gives, in some 2.5 bytes a block. Pages of 64 kB are what a log can be
/// divided by.
///
///     FileAccess log("day.tqx");
///     const Index index = Index::build(log);
///     IndexedBlocks fixes(index, log, {{4007}});
///     for (Block block; fixes.next(block);)
///         use(block);
///
/// An index does not refer to the log. Any number of threads may ask the same one at the same time.
class TQX_LOG_API Index
{
public:
    /// Frames the whole log. Throws SourceError when it cannot be read. `pageSize` is at least 16
    /// and at most the default.
    static Index build(const RandomAccess& log, const FramingOptions& options = {},
                       uint32_t pageSize = FramedPages::defaultPageSize);

    /// Frames a source from where it is to its end, in constant memory but for the index. Throws
    /// what the source throws.
    static Index build(ByteSource& source);

    /// Goes on with a log that has become longer: what is known stays, except for what the old end
    /// had cut off. A log that has become shorter is indexed anew. Throws SourceError when the log
    /// cannot be read; the index is unchanged then. A `log` that does not begin with what was
    /// indexed gives an index of nothing in particular.
    void extend(const RandomAccess& log, const FramingOptions& options = {});

    /// Has blocks of the added types of a schema move the week, too, as BlockStream::setSchema()
    /// does. `log` must be what was indexed; of it, the pages that have such blocks are read. Only
    /// once the index is complete: extend() knows the built types alone. Throws SourceError when
    /// the log cannot be read.
    void follow(const Schema& schema, const RandomAccess& log);

    /// Bytes that were indexed.
    uint64_t getLogSize() const { return m_size; }

    /// What framing counts. Nothing is decoded and no neighbours of the blocks are recognised:
    /// `undecodable` is 0, and all bytes that belong to no block are dropped ones.
    StreamCounts getCounts() const;

    struct Type {
        uint16_t number; ///< of its blocks
        uint64_t blocks;
    };

    /// The types that the log has blocks of, by ascending number.
    std::vector<Type> getTypes() const;

    /// Blocks of a type.
    uint64_t getCount(uint16_t number) const;

    /// The earliest and the latest time of a block, wherever in the log; nothing when no block has
    /// one.
    std::optional<GnssMillis> getFirstTime() const;
    std::optional<GnssMillis> getLastTime() const;

    /// Offsets of complete candidates with a bad checksum, of candidates that claim fewer bytes
    /// than a header has, and of the blocks that decoding takes to begin a week; all ascending.
    std::vector<uint64_t> getChecksumErrors() const;
    std::vector<uint64_t> getInvalidLengths() const;
    std::vector<uint64_t> getWeekStarts() const;

    /// Calls `visit` for each run of bytes that belong to no block, from the first to the last.
    /// What in them is well-formed otherwise, reportBetweenBlocks() says. `file` is what the gaps
    /// name.
    void visitGaps(const std::function<void(const StreamGap&)>& visit,
                   const std::string& file = {}) const;

    /// The pages that the log is divided into. A block is in the page that it begins in.
    uint32_t getPageCount() const { return m_pages.getEndPage(); }

    /// Offset at which the first block of a page can begin; for getPageCount() the end of the log.
    uint64_t getPageEntry(uint32_t page) const { return m_pages.entryOf(page); }

    /// What decoding carries into a page.
    WeekContext getPageContext(uint32_t page) const;

    /// All of it, for readers and writers of this library.
    const FramedPages& getPages() const { return m_pages; }

    /// Puts an index together of pages that were framed or saved; they must be linked.
    Index(FramedPages framed, uint64_t logSize);

private:
    std::vector<uint64_t> listOf(FramedPages::Mark mark) const;

    FramedPages m_pages;
    uint64_t m_size;
};

} // namespace tqx
