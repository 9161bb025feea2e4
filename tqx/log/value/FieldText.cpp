#include "tqx/log/value/FieldText.h"

#include "tqx/log/record/Members.h"
#include "tqx/log/text/FixedNumber.h"
#include "tqx/log/text/PrintableText.h"

#include "FieldInfo.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

void appendText(Buffer& out, const QString& text)
{
    const QByteArray utf8 = text.toUtf8();
    out.append(printable({utf8.constData(), static_cast<size_t>(utf8.size())}));
}

/// An integer in decimal, a floating-point number in the shortest form that reads back to it.
template<typename Number>
void appendShortest(Buffer& out, Number value)
{
    constexpr size_t longest = 32;
    char* const begin = out.reserve(longest);
    out.advance(static_cast<size_t>(std::to_chars(begin, begin + longest, value).ptr - begin));
}

// A float is shown with no more than its own decimals and zeros behind them. The number that these
// stand for is half a unit of the float's last place away from it at most; up to so many digits,
// that makes no difference to what they are rounded to.
constexpr double limitOfSingles = 0x1p23;
constexpr double limitOfDoubles = 0x1p53;

double limitOf(const MemberBits& bits, const FieldInfo& info)
{
    if (bits.isCharacter() || info.getRepresentationMode() == FieldValue::BitMask)
        return 0;
    return bits.isSingle() && !info.hasScaleFactor() ? limitOfSingles : limitOfDoubles;
}

} // namespace

FieldText::FieldText(const TQX_FieldLayout& layout, const FieldInfo& field, bool isPacked,
                     bool stored)
    : info(field), bits(layout, isPacked), width(layout.width), isStored(stored),
      isWhole(field.getType().isInteger() && !field.hasScaleFactor() &&
              field.getRepresentationMode() != FieldValue::BitMask),
      scale(field.getScaleFactor()), decimals(field.getShownDecimals()), limit(limitOf(bits, field))
{
    isTime = isContinuousTime(layout);
    if (!info.getUnit().isEmpty())
        unit = ' ' + info.getUnit().toStdString();
    if (!bits.isReal())
        return;
    if (info.hasDoNotUseValue())
        names.push_back(info.getDoNotUseValue().toDouble());
    for (const FieldInfo::SymbolicValue& symbol : info.getSymbolicValues())
        names.push_back(symbol.value.toDouble());
}

FieldValue FieldText::valueIn(uint64_t word) const
{
    if (bits.isCharacter())
        return FieldValue::ch(static_cast<char>(word));
    if (bits.isSingle())
        return FieldValue::f32(MemberBits::single(word));
    if (bits.isReal())
        return FieldValue::f64(bits.real(word));
    const uint64_t value = bits.integer(word);
    return bits.isSigned() ? FieldValue::i(static_cast<int64_t>(value), width)
                           : FieldValue::u(value, width);
}

double FieldText::numberIn(uint64_t word) const
{
    if (bits.isReal())
        return bits.real(word);
    const uint64_t value = bits.integer(word);
    return bits.isSigned() ? static_cast<double>(static_cast<int64_t>(value))
                           : static_cast<double>(value);
}

bool FieldText::isNamed(uint64_t word) const
{
    if (bits.isReal())
        return std::find(names.begin(), names.end(), bits.real(word)) != names.end();
    const FieldValue value = valueIn(word);
    return info.isDoNotUse(value) || info.findSymbolicValue(value);
}

void FieldText::appendStored(Buffer& out, uint64_t word) const
{
    if (bits.isCharacter() || (bits.isReal() && !std::isfinite(bits.real(word))))
        return appendText(out, valueIn(word).toString());
    if (bits.isSingle())
        return appendShortest(out, MemberBits::single(word));
    if (bits.isReal())
        return appendShortest(out, bits.real(word));
    if (bits.isSigned())
        return appendShortest(out, static_cast<int64_t>(bits.integer(word)));
    appendShortest(out, bits.integer(word));
}

/// False, and nothing appended, when the metadata has to be asked.
bool FieldText::appendPlain(Buffer& out, uint64_t word) const
{
    if (!isWhole)
        return appendFixed(out, numberIn(word) * scale, decimals, limit);
    appendStored(out, word);
    return true;
}

bool FieldText::append(Buffer& out, uint64_t word) const
{
    if (isStored) {
        appendStored(out, word);
        return false;
    }
    if (isTime && word == noContinuousTime) {
        out.append("DoNotUse");
        return false;
    }
    const bool isNumber = !isNamed(word);
    if (!isNumber || !appendPlain(out, word))
        appendText(out, info.toScaledString(valueIn(word)));
    return isNumber;
}

} // namespace tqx
