#include "tqx/framing/CandidateChecksum.h"

#include "korcg_crc.h"
#include "korcg_load.h"

namespace tqx
{

bool CandidateChecksum::isIntact(const uint8_t* block, size_t length, uint64_t offset)
{
    const uint8_t* checked = block + BlockHeader::kCheckedFrom;
    const size_t size = length - BlockHeader::kCheckedFrom;
    const uint16_t expected = korcg_load_u16(block + BlockHeader::kChecksumAt);
    if (!mayBeSummedInVain(size, offset)) {
        return m_prefixes.of(checked, offset + BlockHeader::kCheckedFrom, size) == expected;
    }
    if (korcg_crc16_bytes(checked, size) == expected) {
        return true;
    }
    m_summedInVain += size;
    return false;
}

// Summing in vain is allowed for twice the bytes of the stream so far, but not saved up over long
// valid stretches.
bool CandidateChecksum::mayBeSummedInVain(size_t size, uint64_t offset)
{
    constexpr uint64_t kMostSaved = 4 * PrefixChecksums::kLongest;
    const uint64_t limit = 2 * (offset - m_start) + m_allowance;
    if (limit > m_summedInVain + kMostSaved) {
        m_summedInVain = limit - kMostSaved;
    }
    return m_summedInVain + size <= limit;
}

} // namespace tqx
