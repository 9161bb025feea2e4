#pragma once

#include "tqx/gnss/observation/Observation.h"

#include <cstdint>
#include <string>
#include <vector>

/// Logs of a simulated receiver, and the same epochs in the measurement blocks of other
/// generations.
namespace generations
{

/// The epochs that the measurement blocks of a log give.
std::vector<tqx::ObservationEpoch> gather(const std::string& log);

/// One epoch in the block of a generation, by hand from the layout of that block.
std::string firstBlock(const tqx::ObservationEpoch& epoch);
std::string shortBlock(const tqx::ObservationEpoch& epoch);
std::string fullRangeBlock(const tqx::ObservationEpoch& epoch);
std::string genericBlock(const tqx::ObservationEpoch& epoch);

/// The block of additional data, which says the same of each observation: a quarter of a decibel
/// less half a step of C/N0, deviations of 0.1 m and 0.004 cycles, multipath of -0.25 m, smoothing
/// of 0.05 m; the lock time of the observation and `losses`.
std::string extraBlock(const tqx::ObservationEpoch& epoch, uint8_t losses);

} // namespace generations
