#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string_view>

namespace tqx
{

/// One value of a parsed line, see JsonLine. The values of a line lie side by side in the order of
/// its text: after an array or object come its elements or members with all that is in them.
struct JsonValue {
    enum class Kind : uint8_t { Null, False, True, Number, String, Array, Object };

    /// Of a member of an object, else empty.
    std::string_view name() const { return {nameBegin, nameLength}; }

    /// A number as it is written, a string without its escapes.
    std::string_view text() const { return {textBegin, length}; }

    bool isStructured() const { return kind >= Kind::Array; }

    /// Elements of an array, members of an object.
    size_t size() const { return isStructured() ? length : 0; }

    /// Walks over elements or members, not into them.
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
    const char* textBegin; ///< null for what is neither number nor string
    uint32_t nameLength;
    uint32_t length; ///< of the text, or the number of elements or members
    uint32_t span;   ///< values from this one to the next beside it
    Kind kind;
};

} // namespace tqx
