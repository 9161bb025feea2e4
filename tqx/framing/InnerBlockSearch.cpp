#include "tqx/framing/InnerBlockSearch.h"

#include "korcg_crc.h"
#include "korcg_load.h"
#include "tqx/framing/CandidateChecksum.h"
#include "tqx/framing/SyncSearch.h"

#include <algorithm>

namespace tqx
{

namespace
{

// The most by which marks may trail the summed bytes.
constexpr size_t markSlack = 8;
// Shorter stretches are summed directly; longer ones begin where marks reach.
constexpr size_t shortBlock = 64;

} // namespace

bool InnerBlockSearch::find(const uint8_t* bytes, size_t size, uint64_t position)
{
    if (m_found && *m_found >= position) {
        return true;
    }
    collect(bytes, size, position);
    sum(bytes, size, position);
    while (!m_claims.empty() && m_claims.front().end <= position + size) {
        const Claim claim = m_claims.front();
        std::pop_heap(m_claims.begin(), m_claims.end());
        m_claims.pop_back();
        if (claim.begin() >= position && isIntact(bytes + (claim.begin() - position), claim)) {
            m_found = claim.begin();
            return true;
        }
    }
    return false;
}

void InnerBlockSearch::collect(const uint8_t* bytes, size_t size, uint64_t position)
{
    m_searched = std::max(m_searched, position);
    const uint64_t end = position + size;
    while (m_searched < end) {
        const uint8_t* from = bytes + (m_searched - position);
        m_searched += findSync(from, static_cast<size_t>(end - m_searched));
        if (m_searched + BlockHeader::headerSize > end) {
            return;
        }
        const uint16_t length =
            korcg_load_u16(bytes + (m_searched - position) + BlockHeader::lengthAt);
        if (length >= BlockHeader::headerSize) {
            m_claims.push_back({m_searched + length, length});
            std::push_heap(m_claims.begin(), m_claims.end());
        }
        m_searched += BlockHeader::syncSize;
    }
}

// Without gaps, so that every claim's bytes have marks whatever the order of the claims.
void InnerBlockSearch::sum(const uint8_t* bytes, size_t size, uint64_t position)
{
    const uint64_t end = position + size;
    m_summed = std::max(m_summed, position);
    if (end < m_summed + 2 * markSlack) {
        return;
    }
    m_prefixes.of(bytes + (m_summed - position), m_summed, static_cast<size_t>(end - m_summed));
    m_summed = end - markSlack;
}

bool InnerBlockSearch::isIntact(const uint8_t* block, const Claim& claim)
{
    const uint8_t* checked = block + BlockHeader::checkedFrom;
    const size_t size = claim.size - BlockHeader::checkedFrom;
    const uint16_t sum =
        size < shortBlock ? korcg_crc16_bytes(checked, size)
                          : m_prefixes.of(checked, claim.begin() + BlockHeader::checkedFrom, size);
    return sum == korcg_load_u16(block + BlockHeader::checksumAt);
}

} // namespace tqx
