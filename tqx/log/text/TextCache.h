#pragma once

#include "tqx/log/text/Buffer.h"

#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>

namespace tqx
{

/// Texts of values that were written before. Most fields of a stream have few different values, and
/// copying a text is far cheaper than making it. Memory is bounded; a cache that does not help
/// disables itself.
class TextCache
{
public:
    /// Appends the text of a value, which `make(out)` appends when it is not known.
    template<typename Make>
    void append(Buffer& out, uint64_t value, Make make)
    {
        if (m_isOff)
            return make(out);
        const char* slot = m_slots + placeOf(value) * m_slotSize;
        const Head head = headOf(slot);
        if (head.value == value && head.length != 0) {
            out.appendPadded(slot + sizeof head, head.length);
            ++m_found;
            return;
        }
        const size_t start = out.size();
        make(out);
        keep(value, out.view().substr(start));
    }

private:
    /// What is before the text in a slot.
    struct Head {
        uint64_t value;
        uint64_t length; ///< 0 when there is no text
    };

    struct Release {
        void operator()(char* memory) const;
    };

    size_t placeOf(uint64_t value) const { return value * 0x9e3779b97f4a7c15U >> m_placeShift; }

    static Head headOf(const char* slot)
    {
        Head head;
        std::memcpy(&head, slot, sizeof head);
        return head;
    }

    void keep(uint64_t value, std::string_view text);
    void setUp(size_t size, unsigned shift);

    static const char noSlot[];
    const char* m_slots = noSlot;
    size_t m_slotSize = 0;
    unsigned m_placeShift = 58;
    std::unique_ptr<char, Release> m_memory; ///< of the slots, and a chunk after them
    uint32_t m_found = 0;                    ///< texts, since replaced was 0
    uint32_t m_replaced = 0;                 ///< texts that were replaced by others
    bool m_isOff = false;
};

} // namespace tqx
