#pragma once

#include "model/Model.h"

#include <map>
#include <string>
#include <vector>

namespace korcg::generator
{

/// Values that many rows share, each kept once and known by where it is.
template<typename Value>
class Pool
{
public:
    /// `first` is the element at index 0.
    explicit Pool(Value first) { indexOf(first); }

    size_t indexOf(const Value& value)
    {
        const auto [known, isNew] = m_indices.emplace(value, m_values.size());
        if (isNew)
            m_values.push_back(value);
        return known->second;
    }

    const std::vector<Value>& values() const { return m_values; }

private:
    std::map<Value, size_t> m_indices;
    std::vector<Value> m_values;
};

/// Texts, known by the byte at which they begin.
class TextPool
{
public:
    TextPool() { offsetOf(""); }

    size_t offsetOf(const std::string& text);

    /// The characters, as C++ string literals.
    std::string literals() const;

    size_t size() const { return m_size; }

private:
    std::map<std::string, size_t> m_offsets;
    std::vector<std::string> m_texts;
    size_t m_size = 0;
};

} // namespace korcg::generator
