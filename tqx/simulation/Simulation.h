#pragma once

#include "tqx/log/text/Buffer.h"
#include "tqx/simulation/Faults.h"
#include "tqx/simulation/Receiver.h"
#include "tqx/simulation/Track.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace tqx::simulation
{

/// Settings of a simulated log.
struct SimulationSettings {
    uint32_t periodMillis = 1000; ///< from one epoch to the next
    double duration = 60;         ///< seconds
    uint64_t size = 0;            ///< bytes after which the log ends with its epoch, 0: no limit
    uint64_t seed = 1;
    uint16_t week = 2400;
    uint32_t towMillis = 216000000; ///< of the first epoch
    TrackSettings track;
    ReceiverSettings receiver;
    std::vector<Fault> faults;
    double pulsePeriod = 0; ///< seconds between pulses on an event input, 0: none
    bool damage = false;
    bool almanacs = false; ///< with the almanacs of all systems but NavIC
    bool compact = false;  ///< with the measurements in compact blocks, too
    bool mixed = false;    ///< with NMEA, RTCM 3 and text between the blocks, which do not change
};

/// Called after each epoch with the number of bytes it appended; false ends the log there. It may
/// empty the buffer.
using AfterEpoch = std::function<bool(uint64_t size)>;

/// Appends the log of a receiver: measurements, position and a sensor at every epoch, satellites
/// and its state every second, texts, corrections and power less often, ephemerides when they are
/// new. The same settings give the same bytes from one build.
/// Throws DataError when a block cannot be encoded. Returns the faults with their epochs.
std::vector<Fault> simulate(const SimulationSettings& settings, Buffer& output,
                            const AfterEpoch& afterEpoch = {});

} // namespace tqx::simulation
