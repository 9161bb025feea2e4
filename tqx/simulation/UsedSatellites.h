#pragma once

#include "tqx/simulation/Receiver.h"

namespace tqx::simulation
{

/// The count of a system among those of GPS, GLONASS, Galileo, SBAS, BeiDou, QZSS and NavIC.
template<typename Record>
void fillCounts(Record& record, const Solution& solution)
{
    constexpr size_t place[systemCount] = {0, 1, 2, 4, 5, 6, 3};
    for (size_t i = 0; i < systemCount; ++i)
        record.NrSVPerSystem[place[i]] = solution.used[i];
}

/// A bit for each signal number that the position is computed from.
inline uint32_t usedSignals(const Receiver& receiver)
{
    uint32_t signals = 0;
    for (const Sight& sight : receiver.getSights()) {
        for (unsigned i = 0; i < (sight.used ? 2U : 0U); ++i)
            signals |= sight.signals[i].plan->number < 32 ? 1U << sight.signals[i].plan->number : 0;
    }
    return signals;
}

} // namespace tqx::simulation
