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
    : bits(layout, isPacked), width(layout.width), isStored(style.isStored),
      isBitMask(facts.has(TQX_FieldFacts::BitMask) && !bits.isSigned() && !bits.isReal()),
      scale(shownScale(facts, style)), decimals(shownDecimals(facts, style)),
      names(layout, facts, notation)
{
    isTime = isContinuousTime(layout);
    if (const std::string_view shown = shownUnit(facts, style); !shown.empty())
        unit = ' ' + std::string(shown);
    if (bits.isReal() && facts.has(TQX_FieldFacts::HasDoNotUse))
        doNotUse = TQX_realDoNotUse(facts);
}

double FieldText::numberIn(uint64_t word) const
{
    if (bits.isReal())
        return bits.real(word);
    const uint64_t value = bits.integer(word);
    return bits.isSigned() ? static_cast<double>(static_cast<int64_t>(value))
                           : static_cast<double>(value);
}

bool FieldText::appendName(Buffer& out, uint64_t word) const
{
    if (bits.isReal()) {
        if (!doNotUse || bits.real(word) != *doNotUse)
            return false;
        appendNotAvailable(out);
        return true;
    }
    const std::string* name = bits.isCharacter() ? nullptr : names.find(bits.integer(word));
    if (name)
        out.append(*name);
    return name != nullptr;
}

void FieldText::appendStored(Buffer& out, uint64_t word) const
{
    if (bits.isCharacter()) {
        const auto character = static_cast<char>(word);
        return appendPrintableLatin1(out, {&character, character == 0 ? size_t{0} : size_t{1}});
    }
    if (bits.isReal() && !std::isfinite(bits.real(word)))
        return appendFixed(out, bits.real(word), 0);
    if (bits.isSingle())
        return appendShortest(out, MemberBits::single(word));
    if (bits.isReal())
        return appendShortest(out, bits.real(word));
    if (bits.isSigned())
        return appendShortest(out, static_cast<int64_t>(bits.integer(word)));
    appendShortest(out, bits.integer(word));
}

void FieldText::appendNumber(Buffer& out, uint64_t word) const
{
    if (isBitMask)
        return appendBitMask(out, bits.integer(word), width);
    if (bits.isCharacter() || (scale == 0 && !bits.isReal()))
        return appendStored(out, word);
    if (scale == 0 && bits.isSingle())
        return appendFixed(out, MemberBits::single(word), decimals);
    if (scale == 0)
        return appendFixed(out, bits.real(word), decimals);
    if (decimals >= 0)
        return appendFixed(out, numberIn(word) * scale, decimals);
    appendSignificant(out, numberIn(word) * scale, significantDigits);
}

bool FieldText::append(Buffer& out, uint64_t word) const
{
    if (isStored) {
        appendStored(out, word);
        return false;
    }
    if (isTime && word == noContinuousTime) {
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
