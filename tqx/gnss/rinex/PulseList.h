#pragma once

#include "tqx/gnss/event/EventGatherer.h"
#include "tqx/gnss/observation/EpochSelection.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace tqx
{

/// The pulses on inputs in a log. All are kept, because a receiver may report a pulse after the
/// epoch that follows it.
class PulseList
{
public:
    struct Pulse {
        GnssMillis time;
        uint32_t nanoseconds; ///< after the milliseconds
        std::string_view input;
        std::string_view edge;
    };

    PulseList();
    PulseList(const PulseList&) = delete;
    PulseList& operator=(const PulseList&) = delete;

    static bool wants(uint16_t blockNumber) { return EventGatherer::isOfEvent(blockNumber); }

    /// Adds the record of a wanted main block.
    void take(const void* record) { m_gatherer.take(record); }

    /// Ends the log: keeps the pulses within the selected times, in order, each once.
    void finish(const EpochSelection& selection);

    const std::vector<Pulse>& get() const { return m_pulses; }

    /// Place of the first pulse at `time` or later, from the place `start` on.
    size_t findFirstFrom(GnssMillis time, size_t start) const;

private:
    std::vector<Pulse> m_pulses;
    EventGatherer m_gatherer;
};

} // namespace tqx
