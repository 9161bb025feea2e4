#include "tqx/log/index/StretchFramer.h"

#include "TQX_codec.h"
#include "korcg_load.h"
#include "tqx/framing/SyncSearch.h"

#include <algorithm>
#include <utility>

namespace tqx
{

namespace
{

constexpr size_t numbers = Kor::MessageApi::TQX_lastBlockNumber + 1;

/// Framing from the middle of a log starts with some sums prepared, so that the first few blocks
/// need not be summed the slow way.
constexpr uint64_t allowance = 2 * FramedPages::defaultPageSize;

} // namespace

StretchFramer::StretchFramer(uint32_t pageSize, uint32_t firstPage, uint64_t entry)
    : m_pages(pageSize, firstPage, entry), m_checksum(entry, allowance),
      m_slots(new uint16_t[numbers]())
{
}

void StretchFramer::frame(const LogWindow& window, uint32_t endPage)
{
    while (m_pages.getEndPage() < endPage && m_pages.startOf(m_pages.getEndPage()) < window.end) {
        const uint64_t end = m_pages.startOf(m_pages.getEndPage() + 1);
        if (!window.isLast && end + longest > window.end)
            return;
        framePage(window);
    }
}

// Candidates are decided by the page that they begin in, with the bytes that follow it.
void StretchFramer::framePage(const LogWindow& window)
{
    const uint32_t page = m_pages.getEndPage();
    const uint64_t start = m_pages.startOf(page);
    const uint64_t end = std::min(start + m_pages.pageSize, window.end);
    const auto bytesAt = [&](uint64_t offset) { return window.bytes + (offset - window.start); };
    const auto inPage = [&](uint64_t offset) { return static_cast<uint16_t>(offset - start); };
    const auto mark = [&](FramedPages::Mark kind, uint64_t offset) {
        m_pages.marks[kind].add(page, inPage(offset));
    };

    PageRow row;
    row.entry = static_cast<uint32_t>(m_pages.exit - start);
    uint64_t blockEnd = m_pages.exit;
    for (uint64_t at = blockEnd; at < end;) {
        // The second character of the last candidate may be in the next page.
        const uint64_t searched = std::min(end + 1, window.end);
        at += findSync(bytesAt(at), static_cast<size_t>(searched - at));
        if (at >= end)
            break;
        const uint64_t available = window.end - at;
        const size_t length = available < BlockHeader::headerSize
                                  ? 0
                                  : korcg_load_u16(bytesAt(at) + BlockHeader::lengthAt);
        if (available < BlockHeader::headerSize || available < length) {
            mark(FramedPages::GivenUp, at);
        } else if (length < BlockHeader::headerSize) {
            mark(FramedPages::InvalidLength, at);
        } else if (m_checksum.isIntact(bytesAt(at), length, at)) {
            if (at != blockEnd) {
                mark(FramedPages::GapStart, blockEnd);
                mark(FramedPages::GapLast, at - 1);
            }
            addBlock(bytesAt(at), length, page, inPage(at), row);
            at += length;
            blockEnd = at;
            continue;
        } else {
            mark(FramedPages::ChecksumError, at);
        }
        at += BlockHeader::syncSize;
    }
    if (blockEnd < end) {
        mark(FramedPages::GapStart, blockEnd);
        mark(FramedPages::GapLast, end - 1);
    }
    m_pages.rows.push_back(row);
    m_pages.exit = std::max(blockEnd, end);
}

const StretchFramer::KnownNumber& StretchFramer::slotOf(uint16_t number)
{
    uint16_t& slot = m_slots[number];
    if (slot == 0) {
        m_known.push_back(
            {static_cast<uint32_t>(m_pages.types.size()), TQX_recordType(number) != 0});
        m_pages.types.push_back({number, {}});
        slot = static_cast<uint16_t>(m_known.size());
    }
    return m_known[slot - 1U];
}

void StretchFramer::addBlock(const uint8_t* block, size_t size, uint32_t page, uint16_t at,
                             PageRow& row)
{
    constexpr size_t towEnd = 12;
    constexpr size_t weekEnd = 14;
    const KnownNumber& type = slotOf(Kor::MessageApi::TQX_blockNumberOf(korcg_load_u16(block + 4)));
    m_pages.types[type.type].offsets.add(page, at);
    ++row.blocks;
    // As decoding does it: the week is followed as soon as TOW is read, whatever becomes of the
    // rest.
    if (size >= towEnd && type.movesWeek)
        row.addTow(korcg_load_u32(block + 8), page, at, m_pages.marks[FramedPages::WeekStart]);
    if (size < weekEnd)
        return;
    if (const auto time = gnssMillis(korcg_load_u32(block + 8), korcg_load_u16(block + 12))) {
        row.minTime = row.minTime == noMillis ? *time : std::min(row.minTime, *time);
        row.maxTime = row.maxTime == noMillis ? *time : std::max(row.maxTime, *time);
        row.lastTime = *time;
    }
}

} // namespace tqx
