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
    : pages(index.getPages()), log(source), query(std::move(wanted)), size(index.getLogSize()),
      weekStarts(pages.marks[FramedPages::WeekStart]), page(query.firstPage), current(page)
{
    for (const FramedPages::Type& type : pages.types) {
        const auto& numbers = query.numbers;
        if (numbers.empty() ||
            std::find(numbers.begin(), numbers.end(), type.number) != numbers.end())
            selected.push_back({&type, PageOffsets::Cursor(type.offsets)});
    }
    query.endPage = std::min(query.endPage, pages.getEndPage());
}

bool IndexedBlocks::next(Block& block)
{
    for (;;) {
        while (position == offsets.size()) {
            if (!loadPage())
                return false;
        }
        lastOffset = offsets[position++];
        block = blockAt(pages.startOf(current) + lastOffset);
        if (isWanted(block))
            return true;
    }
}

/// Goes to the next page that may hold wanted blocks.
bool IndexedBlocks::loadPage()
{
    uint32_t found = PageOffsets::Cursor::none;
    for (Selected& type : selected)
        found = std::min(found, type.cursor.nextPage(page));
    if (found >= query.endPage)
        return false;
    current = found;
    page = found + 1;
    offsets.clear();
    position = 0;
    if (!mayHoldTime(pages.rowOf(current)))
        return true;
    for (Selected& type : selected) {
        const PageOffsets::Page ofType = type.cursor.at(current);
        offsets.insert(offsets.end(), ofType.begin(), ofType.end());
    }
    std::sort(offsets.begin(), offsets.end());
    starts = weekStarts.at(current);
    times.clear();
    return true;
}

bool IndexedBlocks::mayHoldTime(const PageRow& row) const
{
    if (!query.from && !query.to)
        return true;
    if (row.timeBefore == noMillis)
        return true;
    const GnssMillis first = std::min(row.minTime, row.timeBefore);
    const GnssMillis last =
        row.maxTime == noMillis ? row.timeBefore : std::max(row.maxTime, row.timeBefore);
    return (!query.from || last >= *query.from) && (!query.to || first < *query.to);
}

bool IndexedBlocks::isInTime(std::optional<GnssMillis> time) const
{
    if (!time)
        return !query.from;
    return (!query.from || *time >= *query.from) && (!query.to || *time < *query.to);
}

bool IndexedBlocks::isWanted(const Block& block)
{
    if (!query.from && !query.to)
        return true;
    if (const auto time = block.getTime())
        return isInTime(time);
    const GnssMillis before = timeBefore(lastOffset);
    return isInTime(before == noMillis ? std::nullopt : std::optional(before));
}

/// What a block of the page without a time counts as.
GnssMillis IndexedBlocks::timeBefore(uint16_t offset)
{
    if (every.empty()) {
        for (const FramedPages::Type& type : pages.types)
            every.push_back({&type, PageOffsets::Cursor(type.offsets)});
    }
    if (times.empty()) {
        for (Selected& type : every) {
            for (const uint16_t at : type.cursor.at(current))
                times.emplace_back(at, noMillis);
        }
        std::sort(times.begin(), times.end());
        GnssMillis last = pages.rowOf(current).timeBefore;
        for (auto& [at, time] : times) {
            uint8_t header[14];
            // A block shorter than that has no time of its own.
            if (log.readAt(pages.startOf(current) + at, header, sizeof header) == sizeof header &&
                korcg_load_u16(header + BlockHeader::kLengthAt) >= sizeof header)
                last = gnssMillis(korcg_load_u32(header + 8), korcg_load_u16(header + 12))
                           .value_or(last);
            time = last;
        }
    }
    const auto found =
        std::lower_bound(times.begin(), times.end(), std::pair(offset, GnssMillis{0}));
    return found == times.end() ? noMillis : found->second;
}

// Without a week that begins with the block, the last TOW decides nothing and 0 is as good as any;
// with one, it must be so late that the week begins.
WeekContext IndexedBlocks::getContext() const
{
    const PageRow& row = pages.rowOf(current);
    const uint16_t* here = std::lower_bound(starts.begin(), starts.end(), lastOffset);
    const bool isFirst = row.startsWeek && row.firstTowAt == lastOffset;
    const bool isStart = isFirst || (here != starts.end() && *here == lastOffset);
    const bool isPast = row.startsWeek && row.firstTowAt < lastOffset;
    const auto week = row.weekBefore + (here - starts.begin()) + (isPast ? 1 : 0);
    return {static_cast<uint8_t>(week), isStart ? noTow : 0};
}

void IndexedBlocks::failAt(uint64_t offset) const
{
    throw SourceError(
        fmt::format("{}: {}: no block where the index has one", log.getName(), offset));
}

Block IndexedBlocks::blockAt(uint64_t offset)
{
    if (offset + BlockHeader::kSize > size)
        failAt(offset);
    const uint8_t* bytes = bytesAt(offset, BlockHeader::kSize);
    const uint16_t length = korcg_load_u16(bytes + BlockHeader::kLengthAt);
    if (bytes[0] != kSync1 || bytes[1] != kSync2 || length < BlockHeader::kSize ||
        length > size - offset)
        failAt(offset);
    return {bytesAt(offset, length), length, offset};
}

/// Bytes of the log, which stay until the next call.
const uint8_t* IndexedBlocks::bytesAt(uint64_t offset, size_t count)
{
    if (offset + count > log.getSize())
        failAt(offset);
    if (const uint8_t* bytes = log.getBytes())
        return bytes + offset;
    if (offset < bufferStart || offset + count > bufferStart + bufferSize) {
        // Many blocks of a page are read together, a few one by one.
        constexpr size_t few = 16;
        const size_t piece =
            std::max(count, offsets.size() > few ? size_t{FramedPages::defaultPageSize} : 2048);
        if (buffer.size() < piece)
            buffer.resize(piece);
        bufferStart = offset;
        bufferSize = 0;
        bufferSize = log.readAt(offset, buffer.data(), piece);
    }
    return buffer.data() + (offset - bufferStart);
}

} // namespace tqx
