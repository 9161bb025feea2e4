#include "tqx/log/merge/WrittenBlocks.h"

#include <iterator>

namespace tqx
{

namespace
{

constexpr size_t mostBytes = size_t{64} << 20U;
constexpr size_t entrySize = 128; ///< about what an entry takes beside its bytes

} // namespace

void WrittenBlocks::forget(std::map<GnssMillis, Entries>::iterator bucket)
{
    for (const auto& [bytes, entry] : bucket->second)
        m_bytes -= bytes.size() + entrySize;
    m_timed.erase(bucket);
}

void WrittenBlocks::moveTo(GnssMillis place)
{
    if (place == m_place)
        return;
    m_place = place;
    m_others.clear();
    m_otherBytes = 0;
    while (!m_timed.empty() && m_timed.begin()->first + m_span < place)
        forget(m_timed.begin());
    while (!m_timed.empty() && m_timed.rbegin()->first > place + m_span)
        forget(std::prev(m_timed.end()));
}

bool WrittenBlocks::admits(const Block& block, GnssMillis place, size_t input)
{
    moveTo(place);
    m_key.assign(reinterpret_cast<const char*>(block.data), block.size);
    if (const std::optional<GnssMillis> time = block.getTime()) {
        if (!m_timed[*time].try_emplace(m_key).second)
            return false;
        m_bytes += block.size + entrySize;
        while (m_bytes > mostBytes && m_timed.size() > 1)
            forget(m_timed.begin());
        return true;
    }
    const auto [found, isNew] = m_others.try_emplace(m_key);
    Entry& entry = found->second;
    if (isNew)
        m_otherBytes += block.size + entrySize;
    if (isNew || entry.input != input) {
        entry.input = input;
        entry.seen = 0;
    }
    if (++entry.seen <= entry.written)
        return false;
    entry.written = entry.seen;
    if (m_otherBytes > mostBytes) {
        m_others.clear();
        m_otherBytes = 0;
    }
    return true;
}

} // namespace tqx
