#pragma once

#include "model/MessageLog.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace tqx::view
{

/// Which message each row of a list shows. Takes 8 bytes for each page of the log, and with a
/// filter 2 bytes more for each row.
class RowSet
{
public:
    struct Row {
        uint32_t page;
        uint32_t index;                ///< in the page's messages, when there is no place
        std::optional<uint16_t> place; ///< of the message in its page
    };

    /// No rows.
    RowSet() = default;

    /// All messages of a log.
    static RowSet allOf(const MessageLog& log);

    /// Appends a message of a filtered list; pages and places ascend.
    void add(uint32_t page, uint16_t place);

    /// Removes the pages from `page` on; only for a filtered list.
    void truncate(uint32_t page);

    uint64_t size() const { return m_ends.empty() ? 0 : m_ends.back(); }

    /// The message of a row below size().
    Row at(uint64_t row) const;

    /// The row of the first message at or after a place; size() if there is none. `entries` are
    /// those of the page.
    uint64_t rowOf(uint32_t page, uint16_t place, const std::vector<MessageEntry>& entries) const;

private:
    std::vector<uint64_t> m_ends; ///< rows up to and with each page
    std::vector<uint16_t> m_places;
    bool m_isFiltered = false;
};

} // namespace tqx::view
