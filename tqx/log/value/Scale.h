#pragma once

#include "tqx/log/text/Buffer.h"
#include "tqx_log_export.h"

#include <cmath>
#include <cstdint>

namespace tqx
{

/// A scale factor, applied so that the result is the double nearest to the exact decimal product:
/// 604000100 at 0.001 is 604000.1, not 604000.1000000001.
class TQX_LOG_API Scale
{
public:
    /// `factor` is finite and not 0.
    explicit Scale(double factor);

    /// Infinite only where the result is too large for a double.
    double apply(double value) const
    {
        const double product = value * m_multiplier;
        return std::isinf(product) ? value / m_divisor * m_multiplier : product / m_divisor;
    }

    /// Appends the result of apply() for an integer, as JSON.
    void append(Buffer& out, bool isNegative, uint64_t magnitude) const;

private:
    double m_multiplier;
    double m_divisor = 1;
    // Where the factor is a whole number with its point shifted:
    uint32_t m_wholeMultiplier = 0;
    unsigned m_decimals = 0;   ///< by which the point is shifted
    uint64_t m_endOfWhole = 0; ///< the first integer that has too many digits with it, else 0
};

} // namespace tqx
