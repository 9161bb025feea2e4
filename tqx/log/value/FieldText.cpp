#include "tqx/log/value/FieldText.h"

#include "tqx/log/record/Members.h"
#include "tqx/log/text/FixedNumber.h"
#include "tqx/log/text/PrintableText.h"

#include <charconv>
#include <cmath>

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

constexpr std::string_view notAvailable = "DoNotUse";
constexpr int significantDigits = 7; // those that a float of 32 bits has

std::string plain(std::string_view name)
{
    return std::string(name);
}

const Notation notation = {notAvailable, plain, nullptr, false, true};

/// An integer in decimal, a floating-point number in the shortest form that reads back to it.
template<typename Number>
void appendShortest(Buffer& out, Number value)
{
    constexpr size_t longest = 32;
    char* const begin = out.reserve(longest);
    out.advance(static_cast<size_t>(std::to_chars(begin, begin + longest, value).ptr - begin));
}

/// As many hexadecimal digits as the width takes, so that bits keep their places.
void appendBitMask(Buffer& out, uint64_t value, unsigned width)
{
    constexpr char digits[] = "0123456789abcdef";
    out.append("0x");
    for (unsigned digit = (width + 3) / 4; digit != 0; --digit)
        out.append(digits[value >> (4 * (digit - 1)) & 0xfU]);
}

} // namespace

FieldText::FieldText(const TQX_FieldLayout& layout, const TQX_FieldFacts& facts, bool isPacked,
                     const ValueStyle& style)
    : m_bits(layout, isPacked), m_width(layout.width), m_isStored(style.isStored),
      m_isBitMask(facts.has(TQX_FieldFacts::BitMask) && !m_bits.isSigned() && !m_bits.isReal()),
      m_scale(shownScale(facts, style)), m_decimals(shownDecimals(facts, style)),
      m_names(layout, facts, notation)
{
    m_isTime = isContinuousTime(layout);
    if (const std::string_view shown = shownUnit(facts, style); !shown.empty())
        m_unit = ' ' + std::string(shown);
    if (m_bits.isReal() && facts.has(TQX_FieldFacts::HasDoNotUse))
        m_doNotUse = TQX_realDoNotUse(facts);
}

double FieldText::numberIn(uint64_t word) const
{
    if (m_bits.isReal())
        return m_bits.real(word);
    const uint64_t value = m_bits.integer(word);
    return m_bits.isSigned() ? static_cast<double>(static_cast<int64_t>(value))
                             : static_cast<double>(value);
}

bool FieldText::appendName(Buffer& out, uint64_t word) const
{
    if (m_bits.isReal()) {
        if (!m_doNotUse || m_bits.real(word) != *m_doNotUse)
            return false;
        appendNotAvailable(out);
        return true;
    }
    const std::string* name = m_bits.isCharacter() ? nullptr : m_names.find(m_bits.integer(word));
    if (name)
        out.append(*name);
    return name != nullptr;
}

void FieldText::appendStored(Buffer& out, uint64_t word) const
{
    if (m_bits.isCharacter()) {
        const auto character = static_cast<char>(word);
        return appendPrintableLatin1(out, {&character, character == 0 ? size_t{0} : size_t{1}});
    }
    if (m_bits.isReal() && !std::isfinite(m_bits.real(word)))
        return appendFixed(out, m_bits.real(word), 0);
    if (m_bits.isSingle())
        return appendShortest(out, MemberBits::single(word));
    if (m_bits.isReal())
        return appendShortest(out, m_bits.real(word));
    if (m_bits.isSigned())
        return appendShortest(out, static_cast<int64_t>(m_bits.integer(word)));
    appendShortest(out, m_bits.integer(word));
}

void FieldText::appendNumber(Buffer& out, uint64_t word) const
{
    if (m_isBitMask)
        return appendBitMask(out, m_bits.integer(word), m_width);
    if (m_bits.isCharacter() || (m_scale == 0 && !m_bits.isReal()))
        return appendStored(out, word);
    if (m_scale == 0 && m_bits.isSingle())
        return appendFixed(out, MemberBits::single(word), m_decimals);
    if (m_scale == 0)
        return appendFixed(out, m_bits.real(word), m_decimals);
    if (m_decimals >= 0)
        return appendFixed(out, numberIn(word) * m_scale, m_decimals);
    appendSignificant(out, numberIn(word) * m_scale, significantDigits);
}

bool FieldText::append(Buffer& out, uint64_t word) const
{
    if (m_isStored) {
        appendStored(out, word);
        return false;
    }
    if (m_isTime && word == noContinuousTime) {
        appendNotAvailable(out);
        return false;
    }
    if (appendName(out, word))
        return false;
    appendNumber(out, word);
    return true;
}

void FieldText::appendNotAvailable(Buffer& out)
{
    out.append(notAvailable);
}

} // namespace tqx
