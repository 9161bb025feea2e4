#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <utility>

namespace tqx
{

/// Memory of a column: grows at its end, is not cleared, and is aligned as Arrow recommends.
class ColumnBuffer
{
public:
    ColumnBuffer() = default;
    ColumnBuffer(ColumnBuffer&& other) noexcept { *this = std::move(other); }
    ColumnBuffer& operator=(ColumnBuffer&& other) noexcept
    {
        m_memory = std::move(other.m_memory);
        m_used = std::exchange(other.m_used, 0);
        m_room = std::exchange(other.m_room, 0);
        return *this;
    }

    const uint8_t* data() const { return m_memory.get(); }
    uint8_t* data() { return m_memory.get(); }
    size_t size() const { return m_used; }

    /// Makes room for that many bytes in all. Throws std::bad_alloc.
    void reserve(size_t bytes)
    {
        if (bytes <= m_room)
            return;
        const size_t rounded =
            (std::max(bytes, m_room * 2) + alignment - 1) / alignment * alignment;
        Memory larger(static_cast<uint8_t*>(::operator new (rounded, std::align_val_t{alignment})));
        if (m_used != 0)
            std::memcpy(larger.get(), m_memory.get(), m_used);
        m_memory = std::move(larger);
        m_room = rounded;
    }

    /// Adds that many bytes and returns the first of them, to be written. Throws std::bad_alloc.
    uint8_t* extend(size_t bytes)
    {
        if (bytes > m_room - m_used)
            reserve(m_used + bytes);
        uint8_t* first = m_memory.get() + m_used;
        m_used += bytes;
        return first;
    }

    template<typename Value>
    void push(Value value)
    {
        std::memcpy(extend(sizeof value), &value, sizeof value);
    }

    template<typename Value>
    Value last() const
    {
        Value value;
        std::memcpy(&value, m_memory.get() + m_used - sizeof value, sizeof value);
        return value;
    }

private:
    static constexpr size_t alignment = 64;

    struct Free {
        void operator()(uint8_t* bytes) const
        {
            ::operator delete (bytes, std::align_val_t{alignment});
        }
    };
    using Memory = std::unique_ptr<uint8_t, Free>;

    Memory m_memory;
    size_t m_used = 0;
    size_t m_room = 0;
};

} // namespace tqx
