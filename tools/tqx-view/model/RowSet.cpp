#include "model/RowSet.h"

#include <algorithm>

namespace tqx::view
{

RowSet RowSet::allOf(const MessageLog& log)
{
    RowSet rows;
    rows.m_ends.reserve(log.getPageCount());
    uint64_t end = 0;
    for (uint32_t page = 0; page < log.getPageCount(); ++page) {
        end += log.getMessageCount(page);
        rows.m_ends.push_back(end);
    }
    return rows;
}

void RowSet::add(uint32_t page, uint16_t place)
{
    m_isFiltered = true;
    if (m_ends.size() <= page)
        m_ends.resize(page + 1, m_places.size());
    m_places.push_back(place);
    m_ends[page] = m_places.size();
}

void RowSet::truncate(uint32_t page)
{
    if (page >= m_ends.size())
        return;
    m_ends.resize(page);
    m_places.resize(size());
}

RowSet::Row RowSet::at(uint64_t row) const
{
    const auto end = std::upper_bound(m_ends.begin(), m_ends.end(), row);
    const auto page = static_cast<uint32_t>(end - m_ends.begin());
    const uint64_t first = page == 0 ? 0 : m_ends[page - 1];
    if (m_isFiltered)
        return {page, 0, m_places[row]};
    return {page, static_cast<uint32_t>(row - first), std::nullopt};
}

uint64_t RowSet::rowOf(uint32_t page, uint16_t place,
                       const std::vector<MessageEntry>& entries) const
{
    if (page >= m_ends.size())
        return size();
    const uint64_t first = page == 0 ? 0 : m_ends[page - 1];
    if (m_isFiltered) {
        const auto begin = m_places.begin() + static_cast<std::ptrdiff_t>(first);
        const auto end = m_places.begin() + static_cast<std::ptrdiff_t>(m_ends[page]);
        return static_cast<uint64_t>(std::lower_bound(begin, end, place) - m_places.begin());
    }
    const auto found = std::lower_bound(
        entries.begin(), entries.end(), place,
        [](const MessageEntry& entry, uint16_t wanted) { return entry.place < wanted; });
    return first + static_cast<uint64_t>(found - entries.begin());
}

} // namespace tqx::view
