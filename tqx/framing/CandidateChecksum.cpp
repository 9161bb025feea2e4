#include "tqx/framing/CandidateChecksum.h"

#include "korcg_crc.h"
#include "korcg_load.h"

namespace tqx
{

bool CandidateChecksum::isIntact(const uint8_t* block, size_t length, uint64_t offset)
{
    const uint8_t* checked = block + BlockHeader::checkedFrom;
    const size_t size = length - BlockHeader::checkedFrom;
    const uint16_t expected = korcg_load_u16(block + BlockHeader::checksumAt);
    if (!mayBeSummedInVain(size, offset)) {
        return m_prefixes.of(checked, offset + BlockHeader::checkedFrom, size) == expected;
    }
    if (korcg_crc16_bytes(checked, size) == expected) {
        return true;
    }
    m_summedInVain += size;
    return false;
}

// Wasted summing is allowed for twice the bytes of the stream so far, but the allowance does not
// accumulate over long valid stretches.
bool CandidateChecksum::mayBeSummedInVain(size_t size, uint64_t offset)
{
    constexpr uint64_t mostSaved = 4 * PrefixChecksums::longest;
    const uint64_t limit = 2 * (offset - m_start) + m_allowance;
    if (limit > m_summedInVain + mostSaved) {
        m_summedInVain = limit - mostSaved;
    }
    return m_summedInVain + size <= limit;
}

} // namespace tqx
