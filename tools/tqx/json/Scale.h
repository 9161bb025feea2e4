#pragma once

#include <cstdint>

namespace tool
{

/// A scale factor, applied so that the result is the double nearest to the decimal number that
/// the stored integer and the factor as written stand for: 604000100 at 0.001 is 604000.1, not
/// 604000.1000000001.
class Scale
{
public:
    explicit Scale(double factor);

    double apply(double value) const { return value * multiplier / divisor; }

private:
    double multiplier;
    double divisor = 1;
};

} // namespace tool
