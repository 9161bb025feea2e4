#include "ShownValue.h"

#include "JsonText.h"
#include "TQX_RecordAccess.h"

#include "FieldInfo.h"

#include <cmath>
#include <cstring>

namespace tool
{

using namespace Kor::MessageApi;

ShownValue::ShownValue(const TQX_FieldLayout& layout, const FieldInfo& info, bool isPacked,
                       const Notation& shownIn)
    : notation(shownIn), type(layout.type), isSigned(TQX_isSigned(layout)),
      width(isPacked ? layout.width : 8 * TQX_elementSize(layout)),
      shift(isPacked ? layout.shift : 0), names(info, shownIn)
{
    if (notation.isStored)
        return;
    if (info.hasScaleFactor())
        scale.emplace(info.getScaleFactor());
    if (info.getType().isFloat() && info.hasDoNotUseValue())
        notAvailable = info.getDoNotUseValue().toDouble();
}

uint64_t ShownValue::integerIn(uint64_t word) const
{
    uint64_t value = word >> shift & ~uint64_t{0} >> (64 - width);
    if (isSigned) {
        const uint64_t sign = uint64_t{1} << (width - 1);
        value = (value ^ sign) - sign;
    }
    return value;
}

void ShownValue::appendInteger(Buffer& out, uint64_t value) const
{
    if (const std::string* name = names.find(value))
        return out.append(*name);
    const bool isNegative = isSigned && static_cast<int64_t>(value) < 0;
    if (scale)
        return scale->append(out, isNegative, isNegative ? 0 - value : value);
    if (isNegative)
        return json::appendSigned(out, static_cast<int64_t>(value));
    json::appendUnsigned(out, value);
}

void ShownValue::appendReal(Buffer& out, uint64_t word) const
{
    float single = 0;
    double real = 0;
    if (type == TQX_MemberType::F32) {
        const auto bits = static_cast<uint32_t>(word);
        std::memcpy(&single, &bits, sizeof single);
        real = static_cast<double>(single);
    } else {
        std::memcpy(&real, &word, sizeof real);
    }
    if (notAvailable && real == *notAvailable)
        return out.append(notation.notAvailable);
    if (!std::isfinite(real))
        return out.append(notation.name(std::isnan(real) ? "NaN"
                                        : real > 0       ? "Infinity"
                                                         : "-Infinity"));
    if (scale)
        return json::appendDouble(out, scale->apply(real));
    if (type == TQX_MemberType::F32)
        return json::appendFloat(out, single);
    json::appendDouble(out, real);
}

void ShownValue::append(Buffer& out, uint64_t word) const
{
    if (type == TQX_MemberType::F32 || type == TQX_MemberType::F64)
        return appendReal(out, word);
    if (type != TQX_MemberType::Char)
        return appendInteger(out, integerIn(word));
    const auto character = static_cast<char>(word);
    notation.appendLatin1(out, &character, character == 0 ? 0 : 1);
}

} // namespace tool
