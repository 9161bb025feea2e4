#include "tqx/gnss/event/EventGatherer.h"

#include "tqx/gnss/orbit/Geodesy.h"
#include "tqx/gnss/position/FieldNames.h"
#include "tqx/gnss/position/PositionBlocks.h"
#include "tqx/gnss/position/PositionFilling.h"

#include "TQX_codec.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace tqx
{

using namespace Kor::MessageApi;
using namespace filling;

namespace
{

/// How long to wait for what belongs to an event, and how far apart two epochs may be for
/// interpolation.
constexpr GnssMillis patience = 5000;

constexpr uint16_t blocksOfEvents[] = {4037, 4038, 4229, 4230, 4237, 5924};
constexpr uint16_t blocksOfAttitudes[] = {4070, 5938};

template<typename List>
bool contains(const List& list, uint16_t number)
{
    return std::find(std::begin(list), std::end(list), number) != std::end(list);
}

template<typename Record>
const Record& as(const void* record)
{
    return *static_cast<const Record*>(record);
}

template<typename Record>
std::string_view inputOf(const Record& record)
{
    return valueName(record.korcg_type, "Marker", record.Marker);
}

template<typename Record>
std::string_view edgeOf(const Record& record)
{
    return valueName(record.korcg_type, "Polarity", record.Polarity);
}

/// What the two GNSS blocks have in common. False when there is no position.
template<typename Record>
bool readGnss(const Record& record, Position& position)
{
    position.mode = valueName(record.korcg_type, "PVTMode", record.Mode & 15);
    if (position.mode.empty())
        position.mode = valueName(record.korcg_type, "Mode", record.Mode);
    position.datum = valueName(record.korcg_type, "Datum", record.Datum);
    position.fix = record.Error == 0 ? fixOfMode(record.Mode & 15) : Fix::None;
    position.satellites = record.NrSV == 255 ? -1 : record.NrSV;
    position.correctionAge = known(record.MeanCorrAge, 0.01);
    return position.fix != Fix::None;
}

template<typename Record>
bool readInertial(const Record& record, Position& position)
{
    position.mode = valueName(record.korcg_type, "Mode", record.Mode);
    position.datum = valueName(record.korcg_type, "Datum", record.Datum);
    position.fix = record.Error == 0 ? fixOfInertialMode(record.Mode, 0) : Fix::None;
    return position.fix != Fix::None;
}

bool read(const TQX_ExtEventPVTGeodetic1_s& record, Position& position)
{
    setVelocity(position, record.Vn, record.Ve, record.Vu);
    return readGnss(record, position) &&
           setPlace(position, record.Latitude, record.Longitude, record.Height);
}

bool read(const TQX_ExtEventPVTCartesian1_s& record, Position& position)
{
    if (!readGnss(record, position) || !setEarthFixed(position, record.X, record.Y, record.Z))
        return false;
    setEarthFixedVelocity(position, record.Vx, record.Vy, record.Vz);
    return true;
}

bool read(const TQX_ExtEventINSNavGeod1_s& record, Position& position)
{
    position.undulation = known(record.Undulation);
    if (record.Position_StdDev) {
        setDeviations(position, record.PosStdDev.LatStdDev, record.PosStdDev.LonStdDev,
                      record.PosStdDev.AltStdDev);
    }
    if (record.Attitude)
        setAttitude(position, record.Att);
    if (record.Velocity)
        setVelocity(position, record.Vel.Vn, record.Vel.Ve, record.Vel.Vu);
    return readInertial(record, position) &&
           setPlace(position, record.Latitude, record.Longitude, record.Height);
}

bool read(const TQX_ExtEventINSNavCart1_s& record, Position& position)
{
    if (!readInertial(record, position) || !setEarthFixed(position, record.X, record.Y, record.Z))
        return false;
    if (record.Position_StdDev) {
        position.level = AccuracyLevel::Sigma;
        position.spatialAccuracy = std::hypot(record.PosStdDev.XStdDev, record.PosStdDev.YStdDev,
                                              record.PosStdDev.ZStdDev);
    }
    if (record.Attitude)
        setAttitude(position, record.Att);
    if (record.Velocity)
        setEarthFixedVelocity(position, record.Vel.Vx, record.Vel.Vy, record.Vel.Vz);
    return true;
}

/// Takes over a position, unless there is a better one. Inertial ones are better.
template<typename Record>
void setPosition(Event& event, const Record& record, bool isBetter)
{
    Position position;
    if (!read(record, position) || (event.placeOrigin != Event::Origin::None && !isBetter))
        return;
    const Position before = event.position;
    event.position = position;
    event.placeOrigin = Event::Origin::Receiver;
    if (std::isfinite(position.heading)) {
        event.attitudeOrigin = Event::Origin::Receiver;
    } else {
        event.position.heading = before.heading;
        event.position.pitch = before.pitch;
        event.position.roll = before.roll;
    }
}

double millisOf(const Event& event)
{
    return static_cast<double>(event.nanoseconds) * 1e-6;
}

/// The first epoch at or after the event, if there is also one before it; the end otherwise.
template<typename Epochs>
auto epochAfter(const Epochs& epochs, const Event& event)
{
    const auto after = std::lower_bound(
        epochs.begin(), epochs.end(), event, [](const auto& epoch, const Event& wanted) {
            return epoch.time < wanted.time ||
                   (epoch.time == wanted.time && wanted.nanoseconds != 0);
        });
    if (after == epochs.end() || (after == epochs.begin() && after->time != event.time))
        return epochs.end();
    if (after != epochs.begin() && after->time - std::prev(after)->time > patience &&
        after->time != event.time)
        return epochs.end();
    return after;
}

/// Cubic between two values with their rates, linear where those are not known.
double between(double from, double fromRate, double to, double toRate, double part, double seconds)
{
    if (!std::isfinite(fromRate) || !std::isfinite(toRate))
        return from + (to - from) * part;
    const double rest = 1 - part;
    return from * (1 + 2 * part) * rest * rest + to * part * part * (3 - 2 * part) +
           seconds * part * rest * (fromRate * rest - toRate * part);
}

double turned(double from, double to, double part, double whole)
{
    const double difference = to - from - whole * std::round((to - from) / whole);
    return from + difference * part;
}

Position between(const Position& from, const Position& to, double part)
{
    constexpr double degree = pi / 180;
    const Geodetic start = {from.latitude * degree, from.longitude * degree, from.height};
    const Vector origin = toEarthFixed(start);
    const LocalFrame frame(start);
    const Vector way = frame.toLocal(
        toEarthFixed({to.latitude * degree, to.longitude * degree, to.height}) - origin);
    const double seconds = static_cast<double>(to.time - from.time) * 1e-3;
    const auto along = [&](double rate, double distance, double rateAfter) {
        return between(0, rate, distance, rateAfter, part, seconds);
    };
    const Vector moved = {along(from.east, way.x, to.east), along(from.north, way.y, to.north),
                          along(from.up, way.z, to.up)};
    const Geodetic place = toGeodetic(origin + frame.toEarthFixed(moved));
    Position position = part < 0.5 ? from : to;
    position.latitude = place.latitude / degree;
    position.longitude = place.longitude / degree;
    position.height = place.height;
    position.undulation = from.undulation + (to.undulation - from.undulation) * part;
    position.north = from.north + (to.north - from.north) * part;
    position.east = from.east + (to.east - from.east) * part;
    position.up = from.up + (to.up - from.up) * part;
    position.heading = notKnown;
    position.pitch = notKnown;
    position.roll = notKnown;
    return position;
}

} // namespace

bool EventGatherer::isOfEvent(uint16_t blockNumber)
{
    return contains(blocksOfEvents, blockNumber);
}

bool EventGatherer::wants(uint16_t blockNumber)
{
    return isOfEvent(blockNumber) || contains(blocksOfAttitudes, blockNumber) ||
           positionSource(blockNumber) != nullptr;
}

/// The event of that input and time, new or already waiting.
Event& EventGatherer::eventAt(GnssMillis time, std::string_view input)
{
    for (Event& event : m_events) {
        if (event.time == time && event.input == input)
            return event;
    }
    Event& event = m_events.emplace_back();
    event.time = time;
    event.input = input;
    return event;
}

/// False for records that do not belong to an event.
bool EventGatherer::takeEvent(const void* record, GnssMillis time)
{
    switch (as<TQX_MainHeader_s>(record).BlockNumber) {
    case 5924: {
        const auto& pulse = as<TQX_ExtEvent1_s>(record);
        Event& event = eventAt(time, inputOf(pulse));
        event.edge = edgeOf(pulse);
        if (std::isfinite(pulse.Offset) && pulse.Offset >= 0 && pulse.Offset < 4)
            event.nanoseconds = static_cast<uint32_t>(std::llround(double{pulse.Offset} * 1e9));
        return true;
    }
    case 4037: {
        const auto& block = as<TQX_ExtEventPVTCartesian1_s>(record);
        setPosition(eventAt(time, inputOf(block)), block, false);
        return true;
    }
    case 4038: {
        const auto& block = as<TQX_ExtEventPVTGeodetic1_s>(record);
        setPosition(eventAt(time, inputOf(block)), block, false);
        return true;
    }
    case 4229: {
        const auto& block = as<TQX_ExtEventINSNavCart1_s>(record);
        Event& event = eventAt(time, valueName(block.korcg_type, "Source", block.Source));
        if (event.nanoseconds == 0)
            event.nanoseconds = block.TOWFraction;
        setPosition(event, block, true);
        return true;
    }
    case 4230: {
        const auto& block = as<TQX_ExtEventINSNavGeod1_s>(record);
        Event& event = eventAt(time, valueName(block.korcg_type, "Source", block.Source));
        if (event.nanoseconds == 0)
            event.nanoseconds = block.TOWFraction;
        setPosition(event, block, true);
        return true;
    }
    case 4237: {
        const auto& block = as<TQX_ExtEventAttEuler_s>(record);
        Event& event = eventAt(time, inputOf(block));
        if (block.Error == 0 && event.attitudeOrigin == Event::Origin::None) {
            setAttitude(event.position, block);
            event.attitudeOrigin = Event::Origin::Receiver;
        }
        return true;
    }
    default:
        return false;
    }
}

void EventGatherer::takeEpoch(const void* record, GnssMillis time)
{
    const uint32_t type = as<TQX_MainHeader_s>(record).korcg_type;
    const auto keep = [&](const auto& attitude, bool isThere) {
        if (isThere && known(attitude.Heading) > -1e9) {
            m_attitudes[type].push_back(
                {time, known(attitude.Heading), known(attitude.Pitch), known(attitude.Roll)});
        }
    };
    if (type == TQX_recordTypeOf<TQX_AttEuler1_s>) {
        const auto& attitude = as<TQX_AttEuler1_s>(record);
        keep(attitude, attitude.Error == 0 && attitude.Mode != 0);
        return;
    }
    if (type == TQX_recordTypeOf<TQX_IntAttEuler1_s>) {
        const auto& attitude = as<TQX_IntAttEuler1_s>(record);
        keep(attitude, attitude.Error == 0 && attitude.Mode != 0);
        return;
    }
    Position position;
    if (!readPosition(record, position) || position.fix == Fix::None)
        return;
    if (std::isfinite(position.heading))
        m_attitudes[type].push_back({time, position.heading, position.pitch, position.roll});
    m_positions[position.source].push_back(position);
}

bool EventGatherer::interpolate(Event& event) const
{
    for (const auto& [source, epochs] : m_positions) {
        const auto after = epochAfter(epochs, event);
        if (after == epochs.end())
            continue;
        const Position& to = *after;
        const Position& from = after->time == event.time ? to : *std::prev(after);
        const double step = static_cast<double>(to.time - from.time);
        const double part =
            step > 0 ? (static_cast<double>(event.time - from.time) + millisOf(event)) / step : 0;
        const Position before = event.position;
        event.position = between(from, to, part);
        event.position.heading = before.heading;
        event.position.pitch = before.pitch;
        event.position.roll = before.roll;
        event.placeOrigin = Event::Origin::Interpolated;
        return true;
    }
    return false;
}

void EventGatherer::interpolateAttitude(Event& event) const
{
    // Record types of inertial blocks are the higher ones.
    for (auto entry = m_attitudes.rbegin(); entry != m_attitudes.rend(); ++entry) {
        const std::deque<Attitude>& epochs = entry->second;
        const auto after = epochAfter(epochs, event);
        if (after == epochs.end())
            continue;
        const Attitude& to = *after;
        const Attitude& from = after->time == event.time ? to : *std::prev(after);
        const double step = static_cast<double>(to.time - from.time);
        const double part =
            step > 0 ? (static_cast<double>(event.time - from.time) + millisOf(event)) / step : 0;
        const double heading = turned(from.heading, to.heading, part, 360);
        event.position.heading = heading - 360 * std::floor(heading / 360);
        event.position.pitch = turned(from.pitch, to.pitch, part, 360);
        event.position.roll = turned(from.roll, to.roll, part, 360);
        event.attitudeOrigin = Event::Origin::Interpolated;
        return;
    }
}

void EventGatherer::hand(Event& event)
{
    constexpr uint32_t perMillisecond = 1000000;
    event.time += event.nanoseconds / perMillisecond;
    event.nanoseconds %= perMillisecond;
    if (event.placeOrigin == Event::Origin::None)
        interpolate(event);
    if (event.attitudeOrigin == Event::Origin::None)
        interpolateAttitude(event);
    m_receiver(event);
}

void EventGatherer::handUntil(GnssMillis time)
{
    std::stable_sort(m_events.begin(), m_events.end(), [](const Event& a, const Event& b) {
        return a.time != b.time ? a.time < b.time : a.nanoseconds < b.nanoseconds;
    });
    while (!m_events.empty() && m_events.front().time <= time) {
        hand(m_events.front());
        m_events.pop_front();
    }
}

/// Drops epochs that no event will need any more.
void EventGatherer::forget(GnssMillis time)
{
    const auto drop = [time](auto& epochs) {
        while (epochs.size() > 1 && epochs[1].time < time)
            epochs.pop_front();
    };
    for (auto& [source, epochs] : m_positions)
        drop(epochs);
    for (auto& [type, epochs] : m_attitudes)
        drop(epochs);
}

void EventGatherer::take(const void* record)
{
    const auto& header = as<TQX_MainHeader_s>(record);
    const auto time = gnssMillis(header.TOW, header.WNc);
    if (!time)
        return;
    if (*time + patience < m_now) { // time runs back, as at the start of another log
        finish();
    }
    m_now = std::max(m_now, *time);
    if (!takeEvent(record, *time))
        takeEpoch(record, *time);
    if (m_now > patience)
        handUntil(m_now - patience);
    if (m_now > 2 * patience)
        forget(m_now - 2 * patience);
}

void EventGatherer::finish()
{
    handUntil(UINT64_MAX);
    m_positions.clear();
    m_attitudes.clear();
    m_now = 0;
}

} // namespace tqx
