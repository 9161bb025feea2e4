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
        std::distance(m_pages.begin(), std::lower_bound(m_pages.begin(), m_pages.end(), page)));
}

size_t PageOffsets::offsetsBefore(size_t row) const
{
    return std::accumulate(m_counts.begin(), from(m_counts, row), size_t{0});
}

void PageOffsets::append(const PageOffsets& later, uint32_t firstPage)
{
    if (later.isEmpty())
        return;
    const size_t row = later.rowOf(firstPage);
    const size_t first = later.offsetsBefore(row);
    m_pages.insert(m_pages.end(), from(later.m_pages, row), later.m_pages.end());
    m_counts.insert(m_counts.end(), from(later.m_counts, row), later.m_counts.end());
    m_offsets.insert(m_offsets.end(), from(later.m_offsets, first), later.m_offsets.end());
}

void PageOffsets::truncate(uint32_t firstPage)
{
    const size_t row = rowOf(firstPage);
    m_offsets.resize(offsetsBefore(row));
    m_pages.resize(row);
    m_counts.resize(row);
}

void PageOffsets::addPage(uint32_t page, const std::vector<uint16_t>& ofPage)
{
    if (ofPage.empty())
        return;
    m_pages.push_back(page);
    m_counts.push_back(static_cast<uint16_t>(ofPage.size()));
    m_offsets.insert(m_offsets.end(), ofPage.begin(), ofPage.end());
}

uint32_t PageOffsets::Cursor::nextPage(uint32_t page)
{
    while (m_row < m_source->m_pages.size() && m_source->m_pages[m_row] < page)
        m_first += m_source->m_counts[m_row++];
    return m_row < m_source->m_pages.size() ? m_source->m_pages[m_row] : none;
}

PageOffsets::Page PageOffsets::Cursor::at(uint32_t page)
{
    if (nextPage(page) != page || page == none)
        return {nullptr, nullptr};
    const uint16_t* start = m_source->m_offsets.data() + m_first;
    return {start, start + m_source->m_counts[m_row]};
}

} // namespace tqx
