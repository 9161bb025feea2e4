#include "tqx/log/table/NameDictionary.h"

#include <map>
#include <numeric>

namespace tqx
{

using namespace Kor::MessageApi;

NameDictionary::NameDictionary(const TQX_FieldFacts& facts, unsigned width) : m_offsets(1)
{
    const size_t codes = size_t{1} << width;
    std::vector<std::string> names(codes);
    const auto name = [&](uint64_t code, std::string_view text) {
        if (code < codes && names[code].empty())
            names[code] = text;
    };
    for (const TQX_NamedValue named : TQX_namedValues(facts))
        name(static_cast<uint64_t>(named.value), named.name);
    if (facts.has(TQX_FieldFacts::NamesDoNotUse))
        name(TQX_doNotUse(facts), "DoNotUse");

    std::map<std::string, size_t> known;
    m_places.resize(codes);
    std::iota(m_places.begin(), m_places.end(), uint8_t{0});
    bool isShared = false;
    for (size_t code = 0; code < codes; ++code) {
        std::string text = names[code].empty() ? std::to_string(code) : names[code];
        if (const auto [first, isNew] = known.emplace(text, code); !isNew) {
            m_places[code] = static_cast<uint8_t>(first->second);
            isShared = true;
            text = std::to_string(code); // nobody refers to it
            known.emplace(text, code);
        }
        m_texts += text;
        m_offsets.push_back(static_cast<int32_t>(m_texts.size()));
    }
    if (!isShared)
        m_places.clear();
}

NameDictionary::NameDictionary(const std::vector<std::string>& texts) : m_offsets(1)
{
    for (const std::string& text : texts) {
        m_texts += text;
        m_offsets.push_back(static_cast<int32_t>(m_texts.size()));
    }
}

} // namespace tqx
