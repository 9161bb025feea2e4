#include "DerivedValues.h"

#include <iterator>
#include <limits>

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

constexpr Carrier carrierAt(double frequency)
{
    return {frequency,
            frequency == 0 ? std::numeric_limits<double>::infinity() : speedOfLight / frequency};
}

constexpr std::array<Carrier, 64> allSignals()
{
    std::array<Carrier, 64> carriers{};
    for (std::size_t signal = 0; signal < carriers.size(); ++signal)
        carriers[signal] =
            carrierAt(signal < std::size(fixedFrequency) ? fixedFrequency[signal] : 0.0);
    return carriers;
}

constexpr std::array<std::array<Carrier, 32>, 2> allSlots()
{
    std::array<std::array<Carrier, 32>, 2> carriers{};
    for (int slot = 0; slot < 32; ++slot) {
        carriers[0][static_cast<std::size_t>(slot)] =
            carrierAt(1602000000.0 + (slot - 8) * 562500.0);
        carriers[1][static_cast<std::size_t>(slot)] =
            carrierAt(1246000000.0 + (slot - 8) * 437500.0);
    }
    return carriers;
}

} // namespace

constexpr std::array<Carrier, 64> bySignal = allSignals();
constexpr std::array<std::array<Carrier, 32>, 2> bySlot = allSlots();

} // namespace Kor::MessageApi::Derived
