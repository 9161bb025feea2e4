#include "tqx/log/value/ValueNames.h"

#include <algorithm>

namespace tqx
{

ValueNames::ValueNames(const FieldInfo& field, const Notation& notation)
{
    constexpr size_t small = 256;
    if (!field.getType().isInteger() || notation.isStored)
        return;
    if (field.hasDoNotUseValue())
        add(field.getDoNotUseValue(), std::string(notation.notAvailable));
    for (const FieldInfo::SymbolicValue& symbol : field.getSymbolicValues())
        add(symbol.value, notation.name(symbol.name.toStdString()));
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

void ValueNames::add(const FieldValue& value, std::string text)
{
    const uint64_t bits =
        value.getKind() == FieldKind::U ? value.getU64() : static_cast<uint64_t>(value.getI64());
    entries.emplace_back(bits, std::move(text));
}

const std::string* ValueNames::search(uint64_t bits) const
{
    const auto found =
        std::lower_bound(entries.begin(), entries.end(), bits,
                         [](const auto& entry, uint64_t wanted) { return entry.first < wanted; });
    return found == entries.end() || found->first != bits ? nullptr : &found->second;
}

} // namespace tqx
