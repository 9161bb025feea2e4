#include "tqx/log/value/ValueStyle.h"

#include "tqx/log/value/ShownDecimals.h"

#include <algorithm>
#include <cmath>

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

constexpr double degreesPerRadian = 57.295779513082320877;

bool isTurned(const TQX_FieldFacts& field, const ValueStyle& style)
{
    return style.isInDegrees && !style.isStored && TQX_unit(field) == "radian";
}

} // namespace

std::string_view shownUnit(std::string_view unit, const ValueStyle& style)
{
    return style.hasSymbols ? TQX_unitSymbol(unit) : unit;
}

std::string_view shownUnit(const TQX_FieldFacts& field, const ValueStyle& style)
{
    if (style.isStored)
        return {};
    return shownUnit(isTurned(field, style) ? "degree" : TQX_unit(field), style);
}

double shownScale(const TQX_FieldFacts& field, const ValueStyle& style)
{
    if (style.isStored)
        return 0;
    const double scale = TQX_scale(field);
    if (!isTurned(field, style))
        return scale;
    return (scale == 0 ? 1 : scale) * degreesPerRadian;
}

int shownDecimals(const TQX_FieldFacts& field, const ValueStyle& style)
{
    const int decimals = shownDecimals(field);
    if (!isTurned(field, style) || decimals < 0)
        return decimals;
    // A degree is the smaller unit.
    return std::max(0, decimals - static_cast<int>(std::floor(std::log10(degreesPerRadian))));
}

} // namespace tqx
