#include "tqx/log/value/ShownValue.h"

#include "tqx/log/record/Members.h"
#include "tqx/log/text/NumberText.h"

#include <cmath>

namespace tqx
{

using namespace Kor::MessageApi;

ShownValue::ShownValue(const TQX_FieldLayout& layout, const TQX_FieldFacts& facts, bool isPacked,
                       const Notation& shownIn, const ValueStyle& style)
    : notation(shownIn), bits(layout, isPacked), names(layout, facts, shownIn)
{
    if (notation.isStored)
        return;
    isTime = isContinuousTime(layout);
    if (const double factor = shownScale(facts, style); factor != 0)
        scale.emplace(factor);
    if (bits.isReal() && facts.has(TQX_FieldFacts::HasDoNotUse))
        notAvailable = TQX_realDoNotUse(facts);
}

void ShownValue::appendInteger(Buffer& out, uint64_t value) const
{
    if (const std::string* name = names.find(value))
        return out.append(*name);
    if (isTime && value == noContinuousTime)
        return out.append(notation.notAvailable);
    const bool isNegative = bits.isSigned() && static_cast<int64_t>(value) < 0;
    if (scale)
        return scale->append(out, isNegative, isNegative ? 0 - value : value);
    if (isNegative)
        return number::appendSigned(out, static_cast<int64_t>(value));
    number::appendUnsigned(out, value);
}

void ShownValue::appendReal(Buffer& out, uint64_t word) const
{
    const double real = bits.real(word);
    if (notAvailable && real == *notAvailable)
        return out.append(notation.notAvailable);
    const double shown = scale ? scale->apply(real) : real;
    if (!std::isfinite(shown))
        return out.append(notation.name(std::isnan(shown) ? "NaN"
                                        : shown > 0       ? "Infinity"
                                                          : "-Infinity"));
    if (scale)
        return number::appendDouble(out, shown);
    if (bits.isSingle())
        return number::appendFloat(out, MemberBits::single(word));
    number::appendDouble(out, real);
}

void ShownValue::append(Buffer& out, uint64_t word) const
{
    if (bits.isReal())
        return appendReal(out, word);
    if (!bits.isCharacter())
        return appendInteger(out, bits.integer(word));
    const auto character = static_cast<char>(word);
    notation.appendLatin1(out, &character, character == 0 ? 0 : 1);
}

} // namespace tqx
