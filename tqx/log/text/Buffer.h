#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>

namespace tqx
{

/// A growing run of characters into which output is formatted. Appending short pieces of bounded
/// size, the usual case, costs one comparison and a copy. All appending functions may throw
/// std::bad_alloc, leaving the content unchanged, and invalidate what data() and view() returned.
/// Used by one thread at a time.
class Buffer
{
public:
    static constexpr size_t chunk = 32;

    const char* data() const { return m_start.get(); }
    size_t size() const { return m_used; }
    void clear() { m_used = 0; }
    std::string_view view() const { return {m_start.get(), m_used}; }

    /// Drops everything after the first `length` characters.
    void truncate(size_t length) { m_used = length; }

    /// Replaces a character.
    void replace(size_t position, char character) { m_start[position] = character; }

    /// Room for `length` more characters; call advance() with the number that was used.
    char* reserve(size_t length)
    {
        if (m_capacity - m_used < length)
            grow(length);
        return m_start.get() + m_used;
    }
    void advance(size_t length) { m_used += length; }

    void append(const char* text, size_t length)
    {
        if (length == 0)
            return; // neither place needs to exist then
        std::memcpy(reserve(length), text, length);
        m_used += length;
    }
    /// The same for a text after which one more chunk is readable, whatever it holds. Copying whole
    /// chunks is faster: the compiler needs no call for it.
    void appendPadded(const char* text, size_t length)
    {
        char* to = reserve(length + chunk);
        for (const char* const end = text + length; text < end; text += chunk, to += chunk)
            std::memcpy(to, text, chunk);
        m_used += length;
    }

    void append(std::string_view text) { append(text.data(), text.size()); }
    void append(char character)
    {
        *reserve(1) = character;
        ++m_used;
    }

private:
    void grow(size_t length)
    {
        size_t wanted = m_capacity == 0 ? 1 << 16 : m_capacity * 2;
        while (wanted - m_used < length)
            wanted *= 2;
        std::unique_ptr<char[]> larger(new char[wanted]);
        if (m_used != 0)
            std::memcpy(larger.get(), m_start.get(), m_used);
        m_start = std::move(larger);
        m_capacity = wanted;
    }

    std::unique_ptr<char[]> m_start;
    size_t m_used = 0;
    size_t m_capacity = 0;
};

} // namespace tqx
