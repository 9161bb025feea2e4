#include "tqx/simulation/Signals.h"

namespace tqx::simulation
{

const std::array<SignalPlan, maxSignals>& signalPlans(System system)
{
    constexpr double l1 = 1575420000;
    constexpr double l2 = 1227600000;
    constexpr double l5 = 1176450000;
    constexpr double e5b = 1207140000;
    static constexpr std::array<SignalPlan, maxSignals> plans[systemCount] = {
        {{{0, 0, l1, 0, 0.12, 0}, {3, 3, l2, 0, 0.15, 2.5}, {4, 4, l5, 0, 0.06, -1.5}}},
        {{{8, 0, 1602000000, 562500, 0.2, 0}, {11, 3, 1246000000, 437500, 0.25, 2}, {}}},
        {{{17, 0, l1, 0, 0.1, 0}, {20, 3, l5, 0, 0.06, -1}, {21, 4, e5b, 0, 0.06, -0.5}}},
        {{{28, 0, 1561098000, 0, 0.15, 0},
          {30, 5, 1268520000, 0, 0.08, 0.5},
          {34, 4, e5b, 0, 0.08, 0}}},
        {{{6, 0, l1, 0, 0.12, 0}, {7, 3, l2, 0, 0.12, 1}, {26, 4, l5, 0, 0.06, -1}}},
        {{{15, 4, l5, 0, 0.15, 0}, {36, 6, 2492028000, 0, 0.2, 1.5}, {}}},
        {{{24, 0, l1, 0, 0.25, 2}, {25, 4, l5, 0, 0.15, 1}, {}}},
    };
    return plans[indexOf(system)];
}

bool sends(System system, unsigned number, unsigned signal)
{
    if (system == System::Glonass || system == System::NavIc || system == System::Sbas)
        return signal < 2;
    if (system != System::Gps)
        return true;
    return signal == 0 || (signal == 1 && number % 4 != 0) || (signal == 2 && number % 2 == 1);
}

unsigned partnerOf(System system, unsigned number)
{
    return sends(system, number, 1) ? 1 : 0;
}

} // namespace tqx::simulation
