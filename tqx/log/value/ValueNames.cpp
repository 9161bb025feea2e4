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
            entries.emplace_back(TQX_doNotUse(facts), notation.notAvailable);
    };
    if (!notation.prefersNames)
        addNotAvailable();
    for (const TQX_NamedValue& named : TQX_namedValues(facts))
        entries.emplace_back(static_cast<uint64_t>(named.value), notation.name(named.name));
    if (notation.prefersNames)
        addNotAvailable();
    // Of several names for a value the first one counts.
    std::stable_sort(entries.begin(), entries.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    direct.resize(entries.empty() ? 0 : small);
    for (size_t bits = 0; bits < direct.size(); ++bits)
        direct[bits] = search(bits);
    for (const auto& [bits, text] : entries)
        if (bits >= small)
            firstWide = std::min(firstWide, bits);
}

const std::string* ValueNames::search(uint64_t bits) const
{
    const auto found =
        std::lower_bound(entries.begin(), entries.end(), bits,
                         [](const auto& entry, uint64_t wanted) { return entry.first < wanted; });
    return found == entries.end() || found->first != bits ? nullptr : &found->second;
}

} // namespace tqx
