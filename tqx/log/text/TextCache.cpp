#include "tqx/log/text/TextCache.h"

#include <new>

namespace tqx
{

namespace
{

constexpr size_t cacheLine = 64;

} // namespace

// Holds no text, so that a cache without memory needs no check of its own.
const char TextCache::noSlot[sizeof(Head) + Buffer::chunk] = {};

void TextCache::Release::operator()(char* owned) const
{
    ::operator delete(owned, std::align_val_t(cacheLine));
}

void TextCache::setUp(size_t size, unsigned shift)
{
    const size_t bytes = ((~uint64_t{0} >> shift) + 1) * size + Buffer::chunk;
    m_memory.reset(static_cast<char*>(::operator new(bytes, std::align_val_t(cacheLine))));
    std::memset(m_memory.get(), 0, bytes);
    m_slots = m_memory.get();
    m_slotSize = size;
    m_placeShift = shift;
}

// Few slots as long as few suffice: what is often used stays in the processor's cache.
void TextCache::keep(uint64_t value, std::string_view text)
{
    constexpr uint32_t period = 256;
    constexpr uint32_t goodRate = 16;
    constexpr size_t largestSlot = 4096;
    constexpr unsigned leastShift = 56;
    const size_t needed = sizeof(Head) + text.size();
    if (needed > largestSlot)
        return;
    if (needed > m_slotSize)
        setUp((needed + cacheLine - 1) / cacheLine * cacheLine, m_placeShift);
    char* slot = m_memory.get() + placeOf(value) * m_slotSize;
    if (headOf(slot).length != 0 && ++m_replaced == period) {
        if (m_found < goodRate * m_replaced && m_placeShift > leastShift) {
            setUp(m_slotSize, m_placeShift - 1);
            slot = m_memory.get() + placeOf(value) * m_slotSize;
        } else if (m_found < m_replaced) {
            m_isOff = true;
            return m_memory.reset();
        }
        m_found = 0;
        m_replaced = 0;
    }
    const Head head = {value, text.size()};
    std::memcpy(slot, &head, sizeof head);
    std::memcpy(slot + sizeof head, text.data(), text.size());
}

} // namespace tqx
