#pragma once

#include "tqx/simulation/Satellite.h"

namespace tqx::simulation
{

/// A signal that satellites of a system send, as the receiver tracks it.
struct SignalPlan {
    uint8_t number;   ///< signal number in blocks
    uint8_t slot;     ///< place among the states of a satellite in channel status blocks
    double frequency; ///< hertz; of GLONASS that of channel 0
    double spacing;   ///< hertz between channels
    double codeNoise; ///< metres at the zenith
    double loss;      ///< dB against the first signal
};

/// The signals of a system; the first is the reference of the others.
const std::array<SignalPlan, maxSignals>& signalPlans(System system);

/// Whether a satellite sends a signal; older GPS satellites have fewer.
bool sends(System system, unsigned number, unsigned signal);

inline double frequencyOf(System system, int channel, unsigned signal)
{
    const SignalPlan& plan = signalPlans(system)[signal];
    return plan.frequency + plan.spacing * channel;
}

/// Weights that combine two code ranges to one without the first-order delay of the ionosphere.
struct IonoFree {
    IonoFree(double first, double second)
        : a(first * first / (first * first - second * second)), b(1 - a)
    {
    }
    double a;
    double b;
};

/// Second signal of the pair that the receiver computes its position with, 0 when there is none.
unsigned partnerOf(System system, unsigned number);

} // namespace tqx::simulation
