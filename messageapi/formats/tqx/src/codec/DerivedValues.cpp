#include "DerivedValues.h"

#include <iterator>

namespace Kor::MessageApi::Derived
{

namespace
{

constexpr double l1 = 1575420000;
constexpr double l2 = 1227600000;
constexpr double l5 = 1176450000;
constexpr double e6 = 1278750000;
constexpr double b2 = 1207140000;
constexpr double setAside = -20000000000;

/// Carrier frequency of the signals that have one of their own, by signal number.
constexpr double fixedFrequency[] = {
    l1,         l1, l2,         l2, l5, l1, l1, l2, 0,          0,        0,  0,  1202025000, l1,
    l5,         l5, l5,         l1, e6, e6, l5, b2, 1191795000, setAside, l1, l5, l5,         e6,
    1561098000, b2, 1268520000, 0,  l1, l1, b2, 0,  2492028000, l1,       l1, l5,
};

} // namespace

double carrierFrequency(uint8_t signal, uint8_t slot)
{
    if (signal == 8 || signal == 9)
        return 1602000000.0 + (slot - 8) * 562500.0;
    if (signal == 10 || signal == 11)
        return 1246000000.0 + (slot - 8) * 437500.0;
    return signal < std::size(fixedFrequency) ? fixedFrequency[signal] : 0.0;
}

} // namespace Kor::MessageApi::Derived
