#pragma once

#include "tqx/gnss/observation/Observation.h"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace tqx
{

/// Detects, from epoch to epoch, where lock on a signal was lost: its lock time went back or is
/// shorter than the elapsed time, or its count of interruptions changed. A lock time at the largest
/// value that its block can hold proves nothing.
class LockTracker
{
public:
    /// What an observation says about lock besides its lock time.
    struct Evidence {
        double limit = 0;              ///< largest lock time that its block can hold, seconds
        double step = 1;               ///< seconds in which lock times are counted
        std::optional<uint8_t> losses; ///< interruptions since start-up, modulo 256
        bool isSlip = false;           ///< the receiver says that the phase is not continuous
    };

    /// Sets `observation.isLost` when lock was lost since the last epoch in which the signal had a
    /// phase. Without a phase nothing is concluded.
    void update(Observation& observation, const Evidence& evidence, GnssMillis time);

    /// Carries losses of this signal over to the next epoch, because this one is not shown.
    void keep(const Observation& observation);

private:
    struct State {
        GnssMillis time = 0; ///< of the last phase, 0 for none
        double lockTime = notMeasured;
        std::optional<uint8_t> losses;
        bool isKept = false;
    };
    static constexpr size_t signals = 64;

    State& stateOf(const Observation& observation)
    {
        const size_t place = (size_t{observation.antenna} * systemCount +
                              systemIndex(observation.satellite.system)) *
                                 256 +
                             observation.satellite.number;
        if (place >= m_satellites.size() || !m_satellites[place])
            makeRoom(place);
        return (*m_satellites[place])[observation.signal % signals];
    }
    void makeRoom(size_t place);

    std::vector<std::unique_ptr<std::array<State, signals>>> m_satellites;
};

} // namespace tqx
