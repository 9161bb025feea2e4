#include "tqx/log/index/PageOffsets.h"

#include <algorithm>
#include <iterator>
#include <numeric>

namespace tqx
{

namespace
{

template<typename T>
typename std::vector<T>::const_iterator from(const std::vector<T>& values, size_t index)
{
    return values.begin() + static_cast<std::ptrdiff_t>(index);
}

} // namespace

/// The first row at or after a page.
size_t PageOffsets::rowOf(uint32_t page) const
{
    return static_cast<size_t>(
        std::distance(pages.begin(), std::lower_bound(pages.begin(), pages.end(), page)));
}

size_t PageOffsets::offsetsBefore(size_t row) const
{
    return std::accumulate(counts.begin(), from(counts, row), size_t{0});
}

void PageOffsets::append(const PageOffsets& later, uint32_t firstPage)
{
    if (later.isEmpty())
        return;
    const size_t row = later.rowOf(firstPage);
    const size_t first = later.offsetsBefore(row);
    pages.insert(pages.end(), from(later.pages, row), later.pages.end());
    counts.insert(counts.end(), from(later.counts, row), later.counts.end());
    offsets.insert(offsets.end(), from(later.offsets, first), later.offsets.end());
}

void PageOffsets::truncate(uint32_t firstPage)
{
    const size_t row = rowOf(firstPage);
    offsets.resize(offsetsBefore(row));
    pages.resize(row);
    counts.resize(row);
}

void PageOffsets::addPage(uint32_t page, const std::vector<uint16_t>& ofPage)
{
    if (ofPage.empty())
        return;
    pages.push_back(page);
    counts.push_back(static_cast<uint16_t>(ofPage.size()));
    offsets.insert(offsets.end(), ofPage.begin(), ofPage.end());
}

uint32_t PageOffsets::Cursor::nextPage(uint32_t page)
{
    while (row < source->pages.size() && source->pages[row] < page)
        first += source->counts[row++];
    return row < source->pages.size() ? source->pages[row] : none;
}

PageOffsets::Page PageOffsets::Cursor::at(uint32_t page)
{
    if (nextPage(page) != page || page == none)
        return {nullptr, nullptr};
    const uint16_t* start = source->offsets.data() + first;
    return {start, start + source->counts[row]};
}

} // namespace tqx
