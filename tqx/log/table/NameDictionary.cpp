#include "tqx/log/table/NameDictionary.h"

#include <map>

namespace tqx
{

using namespace Kor::MessageApi;

NameDictionary::NameDictionary(const TQX_FieldFacts& facts, unsigned width, bool hidesDoNotUse)
    : offsets(1)
{
    indices.fill(none);
    std::map<std::string, int16_t, std::less<>> known;
    const uint64_t codes = uint64_t{1} << width;
    const auto add = [&](uint64_t code, std::string_view text) {
        if (code >= codes || indices[code] != none ||
            (hidesDoNotUse && TQX_isDoNotUse(facts, code)))
            return;
        const auto [at, isNew] = known.emplace(text, static_cast<int16_t>(size()));
        indices[code] = at->second;
        if (!isNew)
            return;
        texts += text;
        offsets.push_back(static_cast<int32_t>(texts.size()));
    };
    // Names come first: consumers list the texts in this order.
    for (const TQX_NamedValue named : TQX_namedValues(facts))
        add(static_cast<uint64_t>(named.value), named.name);
    if (facts.has(TQX_FieldFacts::NamesDoNotUse))
        add(TQX_doNotUse(facts), "DoNotUse");
    for (uint64_t code = 0; code < codes; ++code)
        add(code, std::to_string(code));
}

} // namespace tqx
