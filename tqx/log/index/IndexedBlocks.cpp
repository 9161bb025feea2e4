#include "tqx/log/index/IndexedBlocks.h"

#include "korcg_load.h"
#include "tqx/framing/CandidateChecksum.h"
#include "tqx/framing/SyncSearch.h"
#include "tqx/log/DataError.h"

#include <fmt/format.h>

#include <algorithm>

namespace tqx
{

IndexedBlocks::IndexedBlocks(const Index& index, const RandomAccess& source, BlockQuery wanted)
    : m_pages(index.getPages()), m_log(source), m_query(std::move(wanted)),
      m_size(index.getLogSize()), m_weekStarts(m_pages.marks[FramedPages::WeekStart]),
      m_page(m_query.firstPage), m_current(m_page)
{
    for (const FramedPages::Type& type : m_pages.types) {
        const auto& numbers = m_query.numbers;
        if (numbers.empty() ||
            std::find(numbers.begin(), numbers.end(), type.number) != numbers.end())
            m_selected.push_back({&type, PageOffsets::Cursor(type.offsets)});
    }
    m_query.endPage = std::min(m_query.endPage, m_pages.getEndPage());
}

bool IndexedBlocks::next(Block& block)
{
    for (;;) {
        while (m_position == m_offsets.size()) {
            if (!loadPage())
                return false;
        }
        m_lastOffset = m_offsets[m_position++];
        block = blockAt(m_pages.startOf(m_current) + m_lastOffset);
        if (isWanted(block))
            return true;
    }
}

/// Goes to the next page that may hold wanted blocks.
bool IndexedBlocks::loadPage()
{
    uint32_t found = PageOffsets::Cursor::none;
    for (Selected& type : m_selected)
        found = std::min(found, type.cursor.nextPage(m_page));
    if (found >= m_query.endPage)
        return false;
    m_current = found;
    m_page = found + 1;
    m_offsets.clear();
    m_position = 0;
    if (!mayHoldTime(m_pages.rowOf(m_current)))
        return true;
    for (Selected& type : m_selected) {
        const PageOffsets::Page ofType = type.cursor.at(m_current);
        m_offsets.insert(m_offsets.end(), ofType.begin(), ofType.end());
    }
    std::sort(m_offsets.begin(), m_offsets.end());
    m_starts = m_weekStarts.at(m_current);
    m_times.clear();
    return true;
}

bool IndexedBlocks::mayHoldTime(const PageRow& row) const
{
    if (!m_query.from && !m_query.to)
        return true;
    if (row.timeBefore == noMillis)
        return true;
    const GnssMillis first = std::min(row.minTime, row.timeBefore);
    const GnssMillis last =
        row.maxTime == noMillis ? row.timeBefore : std::max(row.maxTime, row.timeBefore);
    return (!m_query.from || last >= *m_query.from) && (!m_query.to || first < *m_query.to);
}

bool IndexedBlocks::isInTime(std::optional<GnssMillis> time) const
{
    if (!time)
        return !m_query.from;
    return (!m_query.from || *time >= *m_query.from) && (!m_query.to || *time < *m_query.to);
}

bool IndexedBlocks::isWanted(const Block& block)
{
    if (!m_query.from && !m_query.to)
        return true;
    if (const auto time = block.getTime())
        return isInTime(time);
    const GnssMillis before = timeBefore(m_lastOffset);
    return isInTime(before == noMillis ? std::nullopt : std::optional(before));
}

/// The time that a block of the page without one counts as.
GnssMillis IndexedBlocks::timeBefore(uint16_t offset)
{
    if (m_every.empty()) {
        for (const FramedPages::Type& type : m_pages.types)
            m_every.push_back({&type, PageOffsets::Cursor(type.offsets)});
    }
    if (m_times.empty()) {
        for (Selected& type : m_every) {
            for (const uint16_t at : type.cursor.at(m_current))
                m_times.emplace_back(at, noMillis);
        }
        std::sort(m_times.begin(), m_times.end());
        GnssMillis last = m_pages.rowOf(m_current).timeBefore;
        for (auto& [at, time] : m_times) {
            uint8_t header[14];
            // A block shorter than that has no time of its own.
            if (m_log.readAt(m_pages.startOf(m_current) + at, header, sizeof header) ==
                    sizeof header &&
                korcg_load_u16(header + BlockHeader::lengthAt) >= sizeof header) {
                last = gnssMillis(korcg_load_u32(header + 8), korcg_load_u16(header + 12))
                           .value_or(last);
            }
            time = last;
        }
    }
    const auto found =
        std::lower_bound(m_times.begin(), m_times.end(), std::pair(offset, GnssMillis{0}));
    return found == m_times.end() ? noMillis : found->second;
}

// Unless a week begins with the block, the last TOW decides nothing and 0 is as good as any;
// otherwise it must be so late that the week begins.
WeekContext IndexedBlocks::getContext() const
{
    const PageRow& row = m_pages.rowOf(m_current);
    const uint16_t* here = std::lower_bound(m_starts.begin(), m_starts.end(), m_lastOffset);
    const bool isFirst = row.startsWeek && row.firstTowAt == m_lastOffset;
    const bool isStart = isFirst || (here != m_starts.end() && *here == m_lastOffset);
    const bool isPast = row.startsWeek && row.firstTowAt < m_lastOffset;
    const auto week = row.weekBefore + (here - m_starts.begin()) + (isPast ? 1 : 0);
    return {static_cast<uint8_t>(week), isStart ? noTow : 0};
}

void IndexedBlocks::failAt(uint64_t offset) const
{
    throw SourceError(
        fmt::format("{}: {}: no block where the index has one", m_log.getName(), offset));
}

Block IndexedBlocks::blockAt(uint64_t offset)
{
    if (offset + BlockHeader::headerSize > m_size)
        failAt(offset);
    const uint8_t* bytes = bytesAt(offset, BlockHeader::headerSize);
    const uint16_t length = korcg_load_u16(bytes + BlockHeader::lengthAt);
    if (bytes[0] != sync1 || bytes[1] != sync2 || length < BlockHeader::headerSize ||
        length > m_size - offset)
        failAt(offset);
    return {bytesAt(offset, length), length, offset};
}

/// Bytes of the log, valid until the next call.
const uint8_t* IndexedBlocks::bytesAt(uint64_t offset, size_t count)
{
    if (offset + count > m_log.getSize())
        failAt(offset);
    if (const uint8_t* bytes = m_log.getBytes())
        return bytes + offset;
    if (offset < m_bufferStart || offset + count > m_bufferStart + m_bufferSize) {
        // Many blocks of a page are read together, a few one by one.
        constexpr size_t few = 16;
        const size_t piece =
            std::max(count, m_offsets.size() > few ? size_t{FramedPages::defaultPageSize} : 2048);
        if (m_buffer.size() < piece)
            m_buffer.resize(piece);
        m_bufferStart = offset;
        m_bufferSize = 0;
        m_bufferSize = m_log.readAt(offset, m_buffer.data(), piece);
    }
    return m_buffer.data() + (offset - m_bufferStart);
}

} // namespace tqx
