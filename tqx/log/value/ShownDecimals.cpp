#include "tqx/log/value/ShownDecimals.h"

#include <algorithm>
#include <cmath>

namespace tqx
{

namespace
{

int decimalsOf(double step)
{
    constexpr double mostDigits = 1e11;
    for (int decimals = 0;; ++decimals) {
        const double shifted = step * std::pow(10, decimals);
        if (!(shifted < mostDigits))
            break;
        const double whole = std::round(shifted);
        if (whole >= 1 && std::fabs(shifted - whole) < 1e-12 * whole)
            return decimals;
    }
    // Not a finite decimal fraction, such as 1/3600: one step of the integer shows in three digits.
    return std::max(0, static_cast<int>(std::ceil(-std::log10(step))) + 2);
}

} // namespace

int shownDecimals(const Kor::MessageApi::TQX_FieldFacts& field)
{
    constexpr int usual = 6;
    const double step = std::fabs(TQX_scale(field));
    if (field.precision >= 0) {
        const bool isVisible = step == 0 || step * std::pow(10, field.precision) >= 0.5;
        return isVisible ? field.precision : -1;
    }
    return step == 0 ? usual : decimalsOf(step);
}

} // namespace tqx
