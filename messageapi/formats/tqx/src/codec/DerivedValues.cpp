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

constexpr std::array<Carrier, signalNumbers + 2 * frequencySlots> allCarriers()
{
    std::array<Carrier, signalNumbers + 2 * frequencySlots> all{};
    std::size_t next = 0;
    for (; next < signalNumbers; ++next)
        all[next] = carrierAt(next < std::size(fixedFrequency) ? fixedFrequency[next] : 0.0);
    for (int slot = 0; slot < static_cast<int>(frequencySlots); ++slot, ++next) {
        all[next] = carrierAt(1602000000.0 + (slot - 8) * 562500.0);
        all[next + frequencySlots] = carrierAt(1246000000.0 + (slot - 8) * 437500.0);
    }
    return all;
}

} // namespace

constexpr std::array<Carrier, signalNumbers + 2 * frequencySlots> carriers = allCarriers();

} // namespace Kor::MessageApi::Derived
