#include "emit/facts/FactPools.h"

#include "model/Names.h"

#include <fmt/format.h>

namespace korcg::generator
{

size_t TextPool::offsetOf(const std::string& text)
{
    const auto [known, isNew] = m_offsets.emplace(text, m_size);
    if (isNew) {
        m_texts.push_back(text);
        m_size += text.size() + 1;
    }
    return known->second;
}

std::string TextPool::literals() const
{
    std::string result;
    for (const std::string& text : m_texts)
        result += fmt::format("    {} \"\\0\"\n", literal(text));
    return result;
}

} // namespace korcg::generator
