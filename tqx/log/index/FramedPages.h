#pragma once

#include "TQX_Context.h"
#include "TQX_Format.h"
#include "tqx/log/index/PageOffsets.h"
#include "tqx/log/time/GnssTime.h"
#include "tqx_log_export.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace tqx
{

/// Marks "no time" in what an index stores.
constexpr GnssMillis noMillis = ~GnssMillis{0};

/// A time of week that is not available, as on the wire.
constexpr uint32_t noTow = Kor::MessageApi::TQX_noTOW;

/// What an index records about one page of a log. A block belongs to the page that it begins in.
struct PageRow {
    /// Where framing enters the page, as an offset within it: 0, or the end of the block that
    /// reaches into the page.
    uint32_t entry = 0;
    uint16_t blocks = 0;

    /// The first block by which decoding follows the week, if there is one, with its TOW and that
    /// of the last such block.
    uint16_t firstTowAt = 0;
    uint32_t firstTow = noTow;
    uint32_t lastTow = noTow;

    /// Range of the blocks that have a time.
    GnssMillis minTime = noMillis;
    GnssMillis maxTime = noMillis;
    GnssMillis lastTime = noMillis;

    // What depends on the pages before.
    GnssMillis timeBefore = noMillis; ///< of the last block before that has one
    uint32_t towBefore = 0;           ///< last TOW of a decoding context
    uint8_t weekBefore = 0;           ///< week counter of a decoding context
    bool startsWeek = false;          ///< the block at firstTowAt begins a week

    /// Advances by the TOW of the next block that decoding follows the week by, at `at` of the
    /// page. It is added to `starts` when a week begins with it, unless it is the page's first one.
    void addTow(uint32_t tow, uint32_t page, uint16_t at, PageOffsets& starts)
    {
        if (tow == noTow)
            return;
        if (firstTow == noTow) {
            firstTow = tow;
            firstTowAt = at;
        } else if (Kor::MessageApi::TQX_beginsWeek(tow, lastTow)) {
            starts.add(page, at);
        }
        lastTow = tow;
    }
};

TQX_LOG_API bool operator==(const PageRow& left, const PageRow& right);

/// The result of framing consecutive pages of a log. Consecutive parts can be joined.
struct TQX_LOG_API FramedPages {
    static constexpr uint32_t defaultPageSize = 1 << 16;

    /// What is recorded besides blocks.
    enum Mark {
        ChecksumError, ///< a complete candidate with a bad checksum
        InvalidLength, ///< a candidate that claims fewer bytes than a header has
        GapStart,      ///< first byte of a run of bytes that belong to no block
        GapLast,       ///< its last byte; adjacent runs are merged
        WeekStart,     ///< a block that begins a week, except the one at PageRow::firstTowAt
        GivenUp,       ///< a candidate that the end of the log cuts off
        markCount
    };

    /// Where the blocks of one number are.
    struct Type {
        uint16_t number;
        PageOffsets offsets;
    };

    explicit FramedPages(uint32_t bytesPerPage = defaultPageSize, uint32_t first = 0,
                         uint64_t firstEntry = 0)
        : pageSize(bytesPerPage), firstPage(first), exit(firstEntry)
    {
    }

    uint32_t getEndPage() const { return firstPage + static_cast<uint32_t>(rows.size()); }
    uint64_t startOf(uint32_t page) const { return uint64_t{page} * pageSize; }
    const PageRow& rowOf(uint32_t page) const { return rows[page - firstPage]; }

    /// Where framing enters a page from getFirstPage() to getEndPage().
    uint64_t entryOf(uint32_t page) const;

    /// The offsets of a number; an empty list is added if there is none.
    PageOffsets& offsetsOf(uint16_t number);

    /// Adds the pages of `later` from `page` on. `page` must be getEndPage(), and `later` must
    /// enter it where this leaves its last page.
    void append(const FramedPages& later, uint32_t page);

    /// Removes the pages from `page` on.
    void truncate(uint32_t page);

    /// Computes, for every row, what depends on the pages before it; firstPage must be 0.
    void linkRows();

    uint32_t pageSize; ///< at most 65,536
    uint32_t firstPage;
    uint64_t exit; ///< where framing enters the page after the last one
    std::vector<PageRow> rows;
    std::vector<Type> types; ///< only numbers that occur, in no particular order
    std::array<PageOffsets, markCount> marks;
};

} // namespace tqx
