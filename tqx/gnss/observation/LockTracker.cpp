#include "tqx/gnss/observation/LockTracker.h"

namespace tqx
{

void LockTracker::makeRoom(size_t place)
{
    if (place >= m_satellites.size())
        m_satellites.resize(place + 1);
    m_satellites[place] = std::make_unique<std::array<State, signals>>();
}

void LockTracker::update(Observation& observation, const Evidence& evidence, GnssMillis time)
{
    if (std::isnan(observation.phase))
        return;
    State& state = stateOf(observation);
    bool isLost = evidence.isSlip || state.isKept;
    if (state.time != 0) {
        if (evidence.losses && state.losses && *evidence.losses != *state.losses)
            isLost = true;
        const double lock = observation.lockTime;
        if (!std::isnan(lock) && lock < evidence.limit) {
            const double elapsed = static_cast<double>(time - state.time) * 1e-3;
            // Times counted in steps may be up to one step longer.
            if (lock + evidence.step <= elapsed || lock < state.lockTime)
                isLost = true;
        }
    }
    state.time = time;
    state.lockTime = observation.lockTime;
    if (evidence.losses)
        state.losses = evidence.losses;
    state.isKept = false;
    observation.isLost = isLost;
}

void LockTracker::keep(const Observation& observation)
{
    if (observation.isLost)
        stateOf(observation).isKept = true;
}

} // namespace tqx
