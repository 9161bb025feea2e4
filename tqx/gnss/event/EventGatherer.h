#pragma once

#include "tqx/gnss/event/Event.h"
#include "tqx_gnss_export.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <map>

namespace tqx
{

/// Gathers the events of a log: the pulses, and what the receiver computed for them. Where it wrote
/// no position or attitude, these are interpolated between the epochs before and after, from the
/// best source that has both. Keeps some seconds of positions.
class TQX_GNSS_API EventGatherer
{
public:
    /// Receives the events in the order of their times, each once the time to wait for what belongs
    /// to it is over.
    using Receiver = std::function<void(const Event& event)>;

    explicit EventGatherer(Receiver receiver) : m_receiver(std::move(receiver)) {}

    /// Whether blocks of this number have anything to do with events.
    static bool wants(uint16_t blockNumber);

    /// Whether blocks of this number describe events themselves. These alone give all events, but
    /// without interpolated values.
    static bool isOfEvent(uint16_t blockNumber);

    /// Adds the record of a wanted main block, in the order of the log.
    void take(const void* record);

    /// Ends the log.
    void finish();

private:
    /// Heading, pitch and roll at one epoch.
    struct Attitude {
        GnssMillis time;
        double heading, pitch, roll;
    };

    Event& eventAt(GnssMillis time, std::string_view input);
    bool takeEvent(const void* record, GnssMillis time);
    void takeEpoch(const void* record, GnssMillis time);
    void hand(Event& event);
    void handUntil(GnssMillis time);
    bool interpolate(Event& event) const;
    void interpolateAttitude(Event& event) const;
    void forget(GnssMillis time);

    Receiver m_receiver;
    std::deque<Event> m_events; ///< that wait, in order of arrival
    std::map<const PositionSource*, std::deque<Position>> m_positions; ///< by source, best first
    std::map<uint32_t, std::deque<Attitude>> m_attitudes;              ///< by record type
    GnssMillis m_now = 0;
};

} // namespace tqx
