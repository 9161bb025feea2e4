#include "tqx/log/value/ValueNames.h"

#include <algorithm>

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

bool isInteger(TQX_MemberType type)
{
    return type != TQX_MemberType::F32 && type != TQX_MemberType::F64 &&
           type != TQX_MemberType::Char && type != TQX_MemberType::Record;
}

} // namespace

ValueNames::ValueNames(const TQX_FieldLayout& layout, const TQX_FieldFacts& facts,
                       const Notation& notation)
{
    constexpr size_t small = 256;
    if (!isInteger(layout.type) || notation.isStored)
        return;
    const auto addNotAvailable = [&] {
        if (facts.has(TQX_FieldFacts::HasDoNotUse))
            m_entries.emplace_back(TQX_doNotUse(facts), notation.notAvailable);
    };
    if (!notation.prefersNames)
        addNotAvailable();
    for (const TQX_NamedValue& named : TQX_namedValues(facts))
        m_entries.emplace_back(static_cast<uint64_t>(named.value), notation.name(named.name));
    if (notation.prefersNames)
        addNotAvailable();
    // The first of several names for a value counts.
    std::stable_sort(m_entries.begin(), m_entries.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    m_direct.resize(m_entries.empty() ? 0 : small);
    for (size_t bits = 0; bits < m_direct.size(); ++bits)
        m_direct[bits] = search(bits);
    for (const auto& [bits, text] : m_entries) {
        if (bits >= small)
            m_firstWide = std::min(m_firstWide, bits);
    }
}

const std::string* ValueNames::search(uint64_t bits) const
{
    const auto found =
        std::lower_bound(m_entries.begin(), m_entries.end(), bits,
                         [](const auto& entry, uint64_t wanted) { return entry.first < wanted; });
    return found == m_entries.end() || found->first != bits ? nullptr : &found->second;
}

} // namespace tqx
