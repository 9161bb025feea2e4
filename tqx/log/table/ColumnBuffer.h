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

/// Memory of a column: grows at its end, is not cleared, and lies as Arrow recommends it.
class ColumnBuffer
{
public:
    ColumnBuffer() = default;
    ColumnBuffer(ColumnBuffer&& other) noexcept { *this = std::move(other); }
    ColumnBuffer& operator=(ColumnBuffer&& other) noexcept
    {
        memory = std::move(other.memory);
        used = std::exchange(other.used, 0);
        room = std::exchange(other.room, 0);
        return *this;
    }

    const uint8_t* data() const { return memory.get(); }
    uint8_t* data() { return memory.get(); }
    size_t size() const { return used; }

    /// Makes room for that many bytes in all. Throws std::bad_alloc.
    void reserve(size_t bytes)
    {
        if (bytes <= room)
            return;
        const size_t rounded = (std::max(bytes, room * 2) + alignment - 1) / alignment * alignment;
        Memory larger(static_cast<uint8_t*>(::operator new (rounded, std::align_val_t{alignment})));
        if (used != 0)
            std::memcpy(larger.get(), memory.get(), used);
        memory = std::move(larger);
        room = rounded;
    }

    /// Adds that many bytes and returns the first of them, to be written. Throws std::bad_alloc.
    uint8_t* extend(size_t bytes)
    {
        if (bytes > room - used)
            reserve(used + bytes);
        uint8_t* first = memory.get() + used;
        used += bytes;
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
        std::memcpy(&value, memory.get() + used - sizeof value, sizeof value);
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

    Memory memory;
    size_t used = 0;
    size_t room = 0;
};

} // namespace tqx
