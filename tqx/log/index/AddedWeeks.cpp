#include "tqx/log/index/AddedWeeks.h"

#include "korcg_load.h"
#include "tqx/framing/CandidateChecksum.h"
#include "tqx/log/DataError.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace tqx
{

namespace
{

constexpr size_t towAt = 8;
constexpr size_t towEnd = 12;

/// The pages of a log and where in them the blocks are that move the week.
class WeekPages
{
public:
    WeekPages(const FramedPages& pages, const RandomAccess& log, const Schema& schema)
        : m_pages(pages), m_log(log), m_bytes(pages.pageSize + towEnd)
    {
        for (const FramedPages::Type& type : pages.types) {
            if (schema.getAddedBlockType(type.number))
                m_added.emplace_back(type.offsets);
            if (schema.getBlockType(type.number))
                m_known.emplace_back(type.offsets);
        }
    }

    bool hasAdded() const { return !m_added.empty(); }

    /// Whether a page has blocks of added types. Pages must not go down from call to call.
    bool hasAdded(uint32_t page)
    {
        return std::any_of(m_added.begin(), m_added.end(), [page](PageOffsets::Cursor& cursor) {
            return cursor.nextPage(page) == page;
        });
    }

    /// Recomputes what a page says about weeks. Likewise.
    void follow(uint32_t page, PageRow& row, PageOffsets& starts)
    {
        m_offsets.clear();
        for (PageOffsets::Cursor& cursor : m_known) {
            const PageOffsets::Page ofType = cursor.at(page);
            m_offsets.insert(m_offsets.end(), ofType.begin(), ofType.end());
        }
        std::sort(m_offsets.begin(), m_offsets.end());
        const uint64_t start = m_pages.startOf(page);
        const size_t size = m_log.readAt(start, m_bytes.data(), m_bytes.size());
        row.firstTow = noTow;
        row.firstTowAt = 0;
        row.lastTow = noTow;
        for (const uint16_t at : m_offsets) {
            if (size < at + size_t{BlockHeader::headerSize}) {
                throw SourceError(fmt::format("{}: {}: no block where the index has one",
                                              m_log.getName(), start + at));
            }
            const uint8_t* block = m_bytes.data() + at;
            if (size >= at + towEnd && korcg_load_u16(block + BlockHeader::lengthAt) >= towEnd)
                row.addTow(korcg_load_u32(block + towAt), page, at, starts);
        }
    }

private:
    const FramedPages& m_pages;
    const RandomAccess& m_log;
    std::vector<PageOffsets::Cursor> m_added; ///< of types that are not built in
    std::vector<PageOffsets::Cursor> m_known; ///< of all types of the schema
    std::vector<uint16_t> m_offsets;
    std::vector<uint8_t> m_bytes; ///< of a page and the last header that begins in it
};

} // namespace

void followAddedTypes(FramedPages& pages, const RandomAccess& log, const Schema& schema)
{
    WeekPages weeks(pages, log, schema);
    if (!weeks.hasAdded())
        return;
    PageOffsets starts;
    PageOffsets::Cursor before(pages.marks[FramedPages::WeekStart]);
    for (uint32_t page = 0; page < pages.getEndPage(); ++page) {
        if (weeks.hasAdded(page)) {
            weeks.follow(page, pages.rows[page], starts);
            continue;
        }
        for (const uint16_t at : before.at(page))
            starts.add(page, at);
    }
    pages.marks[FramedPages::WeekStart] = std::move(starts);
    pages.linkRows();
}

} // namespace tqx
