#pragma once

#include "tqx/gnss/observation/SatelliteId.h"
#include "tqx/gnss/observation/SignalCode.h"
#include "tqx/log/time/GnssTime.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

namespace tqx
{

/// A value that is not available.
constexpr double notMeasured = std::numeric_limits<double>::quiet_NaN();

/// What was measured on one signal of one satellite at one antenna, as the receiver reported it: no
/// correction that a block offers is applied, and the receiver clock is not removed.
struct Observation {
    SatelliteId satellite;
    SignalCode code;
    uint8_t signal = 0;                  ///< number in blocks
    uint8_t antenna = 0;                 ///< 0 the main one
    int8_t channel = 0;                  ///< frequency number of a GLONASS FDMA signal, -7 to 6
    bool isHalfCycle = false;            ///< the phase may be wrong by half a cycle
    bool isSmoothed = false;             ///< the code is smoothed by the phase
    bool isLost = false;                 ///< lock was lost since the epoch before
    double range = notMeasured;          ///< code range in metres
    double phase = notMeasured;          ///< cycles, grows with the range
    double doppler = notMeasured;        ///< hertz, positive when approaching
    double cn0 = notMeasured;            ///< dB-Hz
    double lockTime = notMeasured;       ///< seconds of continuous tracking
    double rangeDeviation = notMeasured; ///< standard deviation of the range in metres
    double phaseDeviation = notMeasured; ///< standard deviation of the phase in cycles
    double multipath = notMeasured;      ///< metres, to be added to undo the multipath mitigation
    double smoothing = notMeasured;      ///< metres, to be added to undo the smoothing
};

/// Whether an observation has a value at all.
inline bool hasValue(const Observation& o)
{
    return !std::isnan(o.range) || !std::isnan(o.phase) || !std::isnan(o.doppler) ||
           !std::isnan(o.cn0);
}

/// What was measured at one instant of the receiver's clock.
struct ObservationEpoch {
    GnssMillis time = 0;                   ///< that the receiver's clock shows
    uint8_t clockJumps = 0;                ///< milliseconds since start-up, modulo 256
    bool isSteered = false;                ///< the clock is steered to the time system
    double clockBias = notMeasured;        ///< seconds by which the clock is ahead of GPS time
    std::vector<Observation> observations; ///< no signal of a satellite and antenna twice
};

} // namespace tqx
