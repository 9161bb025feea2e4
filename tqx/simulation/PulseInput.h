#pragma once

#include "tqx/simulation/BlockLog.h"
#include "tqx/simulation/Receiver.h"

#include <cstdint>

namespace tqx::simulation
{

/// A device on an event input of the receiver, such as a camera, that sends one pulse per period.
class PulseInput
{
public:
    /// `period` in seconds, 0 for no device.
    explicit PulseInput(double period) : m_period(period) {}

    /// Appends the blocks of the pulses after the previous epoch, up to this one.
    void add(BlockLog& log, const Epoch& epoch, const Receiver& receiver);

private:
    double m_period;
    uint64_t m_count = 0; ///< of the pulses so far
};

} // namespace tqx::simulation
