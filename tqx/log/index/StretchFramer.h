#pragma once

#include "tqx/framing/CandidateChecksum.h"
#include "tqx/log/index/FramedPages.h"

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace tqx
{

/// Bytes of a log that are in memory.
struct LogWindow {
    const uint8_t* bytes;
    uint64_t start; ///< offset in the log of the first one
    uint64_t end;   ///< offset after the last one
    bool isLast;    ///< whether the log ends there
};

/// Frames pages of a log in place, one by one, by the rules of BlockFramer. The only state carried
/// from page to page is where the next one is entered.
class StretchFramer
{
public:
    /// Longest block.
    static constexpr uint32_t longest = 0xffff;

    /// Begins with page `firstPage`, entered at offset `entry` of the log.
    explicit StretchFramer(uint32_t pageSize = FramedPages::defaultPageSize, uint32_t firstPage = 0,
                           uint64_t entry = 0);

    /// Frames the pages before `endPage` for which the window suffices: those with `longest` bytes
    /// after them, and all of them if the log ends with the window. The window must hold the log
    /// from the start of the first page that is still to be framed.
    void frame(const LogWindow& window, uint32_t endPage);

    /// The pages framed so far.
    const FramedPages& getPages() const { return m_pages; }
    /// Hands the pages over; no more can be framed after that.
    FramedPages takePages() { return std::move(m_pages); }

private:
    /// What is known about a block number.
    struct KnownNumber {
        uint32_t type = 0; ///< index in FramedPages::types
        bool movesWeek = false;
    };

    void framePage(const LogWindow& window);
    void addBlock(const uint8_t* block, size_t size, uint32_t page, uint16_t at, PageRow& row);
    const KnownNumber& slotOf(uint16_t number);

    FramedPages m_pages;
    CandidateChecksum m_checksum;
    std::unique_ptr<uint16_t[]> m_slots; ///< by number: 1 + index in known
    std::vector<KnownNumber> m_known;
};

} // namespace tqx
