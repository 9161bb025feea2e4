#include "tqx/log/value/ShownValue.h"

#include "tqx/log/record/Members.h"
#include "tqx/log/text/NumberText.h"

#include <cmath>

namespace tqx
{

using namespace Kor::MessageApi;

ShownValue::ShownValue(const TQX_FieldLayout& layout, const TQX_FieldFacts& facts, bool isPacked,
                       const Notation& shownIn, const ValueStyle& style)
    : m_notation(shownIn), m_bits(layout, isPacked), m_names(layout, facts, shownIn)
{
    if (m_notation.isStored)
        return;
    m_isTime = isContinuousTime(layout);
    if (const double factor = shownScale(facts, style); factor != 0)
        m_scale.emplace(factor);
    if (m_bits.isReal() && facts.has(TQX_FieldFacts::HasDoNotUse))
        m_notAvailable = TQX_realDoNotUse(facts);
}

void ShownValue::appendInteger(Buffer& out, uint64_t value) const
{
    if (const std::string* name = m_names.find(value))
        return out.append(*name);
    if (m_isTime && value == noContinuousTime)
        return out.append(m_notation.notAvailable);
    const bool isNegative = m_bits.isSigned() && static_cast<int64_t>(value) < 0;
    if (m_scale)
        return m_scale->append(out, isNegative, isNegative ? 0 - value : value);
    if (isNegative)
        return number::appendSigned(out, static_cast<int64_t>(value));
    number::appendUnsigned(out, value);
}

void ShownValue::appendReal(Buffer& out, uint64_t word) const
{
    const double real = m_bits.real(word);
    if (m_notAvailable && real == *m_notAvailable)
        return out.append(m_notation.notAvailable);
    const double shown = m_scale ? m_scale->apply(real) : real;
    if (!std::isfinite(shown)) {
        return out.append(m_notation.name(std::isnan(shown) ? "NaN"
                                          : shown > 0       ? "Infinity"
                                                            : "-Infinity"));
    }
    if (m_scale)
        return number::appendDouble(out, shown);
    if (m_bits.isSingle())
        return number::appendFloat(out, MemberBits::single(word));
    number::appendDouble(out, real);
}

void ShownValue::append(Buffer& out, uint64_t word) const
{
    if (m_bits.isReal())
        return appendReal(out, word);
    if (!m_bits.isCharacter())
        return appendInteger(out, m_bits.integer(word));
    const auto character = static_cast<char>(word);
    m_notation.appendLatin1(out, &character, character == 0 ? 0 : 1);
}

} // namespace tqx
