#include "tqx/log/index/Index.h"

#include "tqx/log/index/AddedWeeks.h"

#include <algorithm>
#include <utility>

namespace tqx
{

namespace
{

/// The offsets of a log, one by one.
class OffsetWalk
{
public:
    OffsetWalk(const FramedPages& framed, const PageOffsets& offsets)
        : m_pages(framed), m_cursor(offsets)
    {
        load();
    }

    bool isAtEnd() const { return m_page == PageOffsets::Cursor::none; }
    uint64_t get() const { return m_pages.startOf(m_page) + *m_at; }

    void advance()
    {
        if (++m_at == m_ofPage.end()) {
            ++m_page;
            load();
        }
    }

    /// Skips those before `offset` and returns how many.
    uint64_t passBefore(uint64_t offset)
    {
        uint64_t passed = 0;
        for (; !isAtEnd() && get() < offset; advance())
            ++passed;
        return passed;
    }

private:
    void load()
    {
        m_page = m_cursor.nextPage(m_page);
        if (isAtEnd())
            return;
        m_ofPage = m_cursor.at(m_page);
        m_at = m_ofPage.begin();
    }

    const FramedPages& m_pages;
    PageOffsets::Cursor m_cursor;
    uint32_t m_page = 0;
    PageOffsets::Page m_ofPage = {};
    const uint16_t* m_at = nullptr;
};

} // namespace

Index::Index(FramedPages framed, uint64_t logSize) : m_pages(std::move(framed)), m_size(logSize) {}

Index Index::build(const RandomAccess& log, const FramingOptions& options, uint32_t pageSize)
{
    return {frameLog(log, FramedPages(pageSize), options), log.getSize()};
}

Index Index::build(ByteSource& source)
{
    uint64_t size = 0;
    FramedPages framed = frameSource(source, FramedPages(), size);
    return {std::move(framed), size};
}

// Candidates are given up only at the end of the log, and the page that contained it may now have
// more blocks.
void Index::extend(const RandomAccess& log, const FramingOptions& options)
{
    if (log.getSize() < m_size) {
        *this = build(log, options, m_pages.pageSize);
        return;
    }
    FramedPages kept = m_pages;
    const PageOffsets& givenUp = kept.marks[FramedPages::GivenUp];
    auto first = static_cast<uint32_t>(m_size / kept.pageSize);
    if (!givenUp.isEmpty())
        first = std::min(first, givenUp.getFirstPage());
    kept.truncate(first);
    m_pages = frameLog(log, std::move(kept), options);
    m_size = log.getSize();
}

void Index::follow(const Schema& schema, const RandomAccess& log)
{
    if (schema.hasAddedTypes())
        followAddedTypes(m_pages, log, schema);
}

StreamCounts Index::getCounts() const
{
    StreamCounts counts;
    counts.bytes = m_size;
    for (const PageRow& row : m_pages.rows)
        counts.blocks += row.blocks;
    visitGaps([&](const StreamGap& gap) { counts.droppedBytes += gap.bytes; });
    counts.crcErrors = m_pages.marks[FramedPages::ChecksumError].size();
    counts.invalidLengths = m_pages.marks[FramedPages::InvalidLength].size();
    return counts;
}

std::vector<Index::Type> Index::getTypes() const
{
    std::vector<Type> types;
    for (const FramedPages::Type& type : m_pages.types)
        types.push_back({type.number, type.offsets.size()});
    std::sort(types.begin(), types.end(),
              [](const Type& left, const Type& right) { return left.number < right.number; });
    return types;
}

uint64_t Index::getCount(uint16_t number) const
{
    for (const FramedPages::Type& type : m_pages.types) {
        if (type.number == number)
            return type.offsets.size();
    }
    return 0;
}

std::optional<GnssMillis> Index::getFirstTime() const
{
    GnssMillis first = noMillis; // later than any
    for (const PageRow& row : m_pages.rows)
        first = std::min(first, row.minTime);
    return first == noMillis ? std::nullopt : std::optional(first);
}

std::optional<GnssMillis> Index::getLastTime() const
{
    std::optional<GnssMillis> last;
    for (const PageRow& row : m_pages.rows) {
        if (row.maxTime != noMillis)
            last = std::max(last.value_or(0), row.maxTime);
    }
    return last;
}

std::vector<uint64_t> Index::listOf(FramedPages::Mark mark) const
{
    std::vector<uint64_t> list;
    for (OffsetWalk walk(m_pages, m_pages.marks[mark]); !walk.isAtEnd(); walk.advance())
        list.push_back(walk.get());
    return list;
}

std::vector<uint64_t> Index::getChecksumErrors() const
{
    return listOf(FramedPages::ChecksumError);
}

std::vector<uint64_t> Index::getInvalidLengths() const
{
    return listOf(FramedPages::InvalidLength);
}

std::vector<uint64_t> Index::getWeekStarts() const
{
    std::vector<uint64_t> starts = listOf(FramedPages::WeekStart);
    const auto within = static_cast<std::ptrdiff_t>(starts.size());
    for (uint32_t page = 0; page < getPageCount(); ++page) {
        const PageRow& row = m_pages.rowOf(page);
        if (row.startsWeek)
            starts.push_back(m_pages.startOf(page) + row.firstTowAt);
    }
    std::inplace_merge(starts.begin(), starts.begin() + within, starts.end());
    return starts;
}

void Index::visitGaps(const std::function<void(const StreamGap&)>& visit,
                      const std::string& file) const
{
    OffsetWalk starts(m_pages, m_pages.marks[FramedPages::GapStart]);
    OffsetWalk lasts(m_pages, m_pages.marks[FramedPages::GapLast]);
    OffsetWalk checksums(m_pages, m_pages.marks[FramedPages::ChecksumError]);
    OffsetWalk lengths(m_pages, m_pages.marks[FramedPages::InvalidLength]);
    while (!starts.isAtEnd()) {
        StreamGap gap;
        gap.file = file;
        gap.offset = starts.get();
        uint64_t end = gap.offset;
        for (; !starts.isAtEnd() && starts.get() == end; starts.advance(), lasts.advance())
            end = lasts.get() + 1;
        gap.bytes = end - gap.offset;
        gap.crcErrors = checksums.passBefore(end);
        gap.invalidLengths = lengths.passBefore(end);
        gap.isCut = end == m_size && !m_pages.marks[FramedPages::GivenUp].isEmpty();
        visit(gap);
    }
}

WeekContext Index::getPageContext(uint32_t page) const
{
    const PageRow& row = m_pages.rowOf(page);
    return {row.weekBefore, row.towBefore};
}

} // namespace tqx
