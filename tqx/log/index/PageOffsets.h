#pragma once

#include "tqx_log_export.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tqx
{

/// Ascending offsets in a log, stored by page: 16 bits each, plus 6 bytes for each page that has
/// any.
class TQX_LOG_API PageOffsets
{
public:
    /// Offsets of one page, counted from its start, ascending.
    struct Page {
        const uint16_t* begin_;
        const uint16_t* end_;
        const uint16_t* begin() const { return begin_; }
        const uint16_t* end() const { return end_; }
        size_t size() const { return static_cast<size_t>(end_ - begin_); }
        bool isEmpty() const { return begin_ == end_; }
    };

    /// Adds an offset, which must be greater than all added before.
    void add(uint32_t page, uint16_t offset)
    {
        if (m_pages.empty() || m_pages.back() != page) {
            m_pages.push_back(page);
            m_counts.push_back(0);
        }
        ++m_counts.back();
        m_offsets.push_back(offset);
    }

    /// Adds the offsets of `later` from page `firstPage` on.
    void append(const PageOffsets& later, uint32_t firstPage);

    /// Removes the offsets from page `firstPage` on.
    void truncate(uint32_t firstPage);

    /// Adds the offsets of a whole page after all others; for readers of saved ones.
    void addPage(uint32_t page, const std::vector<uint16_t>& ofPage);

    size_t size() const { return m_offsets.size(); }
    bool isEmpty() const { return m_offsets.empty(); }

    /// Pages that have offsets, ascending.
    size_t getPageCount() const { return m_pages.size(); }
    uint32_t getFirstPage() const { return m_pages.front(); }
    uint32_t getLastPage() const { return m_pages.back(); }

    /// Walks the pages in ascending order. The offsets must not change meanwhile.
    class Cursor
    {
    public:
        explicit Cursor(const PageOffsets& all) : m_source(&all) {}

        /// Offsets of `page`, maybe none. Pages must not descend from call to call.
        Page at(uint32_t page);

        /// The next page at or after `page` that has offsets; `none` if there is none.
        uint32_t nextPage(uint32_t page);

        static constexpr uint32_t none = 0xffffffff;

    private:
        const PageOffsets* m_source;
        size_t m_row = 0;
        size_t m_first = 0; ///< index of the first offset of the row
    };

    friend bool operator==(const PageOffsets& left, const PageOffsets& right)
    {
        return left.m_pages == right.m_pages && left.m_counts == right.m_counts &&
               left.m_offsets == right.m_offsets;
    }

private:
    size_t rowOf(uint32_t page) const;
    size_t offsetsBefore(size_t row) const;

    std::vector<uint32_t> m_pages;
    std::vector<uint16_t> m_counts;
    std::vector<uint16_t> m_offsets;
};

} // namespace tqx
