#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string_view>

namespace tqx
{

/// One value of a parsed line, see JsonLine. The values of a line are adjacent, in the order of its
/// text: an array or object is followed by its elements or members with their contents.
struct JsonValue {
    enum class Kind : uint8_t { Null, False, True, Number, String, Array, Object };

    /// Name of a member of an object, else empty.
    std::string_view name() const { return {nameBegin, nameLength}; }

    /// A number as written, a string without its escapes.
    std::string_view text() const { return {textBegin, length}; }

    bool isStructured() const { return kind >= Kind::Array; }

    /// Elements of an array, members of an object.
    size_t size() const { return isStructured() ? length : 0; }

    /// Iterates over elements or members, without descending into them.
    class Iterator
    {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = JsonValue;
        using difference_type = std::ptrdiff_t;
        using pointer = const JsonValue*;
        using reference = const JsonValue&;

        explicit Iterator(const JsonValue* value) : m_value(value) {}
        const JsonValue& operator*() const { return *m_value; }
        const JsonValue* operator->() const { return m_value; }
        Iterator& operator++()
        {
            m_value += m_value->span;
            return *this;
        }
        bool operator==(const Iterator& other) const { return m_value == other.m_value; }
        bool operator!=(const Iterator& other) const { return m_value != other.m_value; }

    private:
        const JsonValue* m_value;
    };

    Iterator begin() const { return Iterator(this + 1); }
    Iterator end() const { return Iterator(this + span); }

    const char* nameBegin;
    const char* textBegin; ///< null if neither number nor string
    uint32_t nameLength;
    uint32_t length; ///< of the text, or the number of elements or members
    uint32_t span;   ///< distance to its next sibling, in values
    Kind kind;
};

} // namespace tqx
