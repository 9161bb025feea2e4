#include "tqx/simulation/Receiver.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tqx::simulation
{

namespace
{

constexpr double degrees = 180 / pi;
constexpr double warmUp = 600; // seconds of operation before the log begins
constexpr double earthRotation = 7.2921151467e-5;
constexpr double referenceFrequency = 1575420000; // of the ionospheric delay

} // namespace

double Sight::azimuth() const
{
    const double angle = std::atan2(direction.x, direction.y) * degrees;
    return angle < 0 ? angle + 360 : angle;
}

double Sight::elevation() const
{
    return std::asin(direction.z) * degrees;
}

Receiver::Receiver(Random& source, const TrackSettings& track, double start,
                   const ReceiverSettings& settings)
    : m_random(source), m_slips(4711), m_secondNoise(4712), m_slipsPerHour(settings.slipsPerHour),
      m_hidesSlips(settings.hidesSlips), m_track(track), m_initialBias(source.uniform(-3e-4, 3e-4)),
      m_clockDrift(source.uniform(-1.5e-7, 1.5e-7)), m_frame(track.start)
{
    m_clockDrift = settings.clockDrift.value_or(m_clockDrift);
    for (const NominalSatellite& nominal : nominalSatellites(settings.systems))
        m_satellites.push_back(std::make_unique<Satellite>(nominal, source, start));
    m_channels.resize(m_satellites.size());
    if (settings.hasSecondAntenna)
        m_secondChannels.resize(m_satellites.size());
    m_numbersInUse.resize(m_satellites.size() + 1);
}

/// The clock drifts, and is set by whole milliseconds to stay within half of one.
void Receiver::advanceClock(double elapsed)
{
    m_clockBias = m_initialBias + m_clockDrift * elapsed + m_clockJumps * 1e-3;
    while (std::fabs(m_clockBias) > 5e-4) {
        const int jump = m_clockBias > 0 ? -1 : 1;
        m_clockJumps += jump;
        m_clockBias += jump * 1e-3;
    }
}

/// Looks at all satellites twice a minute; those that stay well below the mask until the next time
/// need no work in between.
void Receiver::selectCandidates(double now)
{
    constexpr double interval = 30;
    constexpr double margin = 2 / degrees; // more than a satellite rises in that time
    if (now < m_candidatesUntil)
        return;
    m_candidatesUntil = now + interval;
    m_candidates.clear();
    for (size_t i = 0; i < m_satellites.size(); ++i) {
        m_satellites[i]->moveTo(now);
        const Vector line = m_satellites[i]->stateAt(now).motion.position - m_antenna.position;
        const bool isNear =
            dot(line, m_frame.getUp()) > std::sin(maskElevation / degrees - margin) * length(line);
        if (isNear) {
            m_candidates.push_back(i);
        } else if (m_channels[i].number != 0) {
            m_numbersInUse[std::exchange(m_channels[i].number, uint8_t{0})] = false;
        }
    }
}

/// The earth turns while the signal travels: the place of the satellite is rotated to the frame at
/// reception.
Receiver::Geometry Receiver::geometry(const Satellite& satellite, double& flight) const
{
    Geometry view = {};
    Vector line = {};
    Vector speed = {};
    Vector sweep = {};
    for (int i = 0; i < 2; ++i) {
        view.sent = satellite.stateAt(m_time - flight);
        const double turn = earthRotation * flight;
        const double sine = std::sin(turn);
        const double cosine = std::cos(turn);
        const auto turned = [=](const Vector& v) {
            return Vector{v.x * cosine + v.y * sine, v.y * cosine - v.x * sine, v.z};
        };
        const Vector position = turned(view.sent.motion.position);
        line = position - m_antenna.position;
        speed = turned(view.sent.motion.velocity);
        sweep = {position.y * earthRotation, -position.x * earthRotation, 0};
        view.range = length(line);
        flight = view.range / speedOfLight;
    }
    const Vector towards = line * (1 / view.range);
    view.rangeRate =
        dot(towards, speed - m_antenna.velocity) / (1 + dot(towards, speed - sweep) / speedOfLight);
    view.direction = m_frame.toLocal(towards);
    return view;
}

/// Lock is lost and regained within an epoch: the phases continue from other whole cycles.
void Receiver::slip(Channel& channel, const Epoch& epoch)
{
    constexpr uint64_t most = 50;
    for (double& ambiguity : channel.ambiguities) {
        const auto cycles = static_cast<double>(1 + m_slips.below(most));
        ambiguity += m_slips.chance(0.5) ? cycles : -cycles;
    }
    if (!m_hidesSlips)
        channel.since = epoch.elapsed;
}

void Receiver::startTracking(Channel& channel, const Epoch& epoch)
{
    size_t number = 1;
    while (m_numbersInUse[number])
        ++number;
    m_numbersInUse[number] = true;
    channel.number = static_cast<uint8_t>(number);
    channel.since = epoch.elapsed == 0 ? -warmUp : epoch.elapsed;
    channel.isNew = true;
    for (double& ambiguity : channel.ambiguities)
        ambiguity = static_cast<double>(m_random.below(2000)) - 1000;
}

Signal Receiver::measure(const Sight& sight, const Geometry& view, Channel& channel, unsigned index,
                         double ionosphere, Random& noise)
{
    const Satellite& satellite = *sight.satellite;
    const SignalPlan& plan = signalPlans(satellite.getSystem())[index];
    const double lowness = 1 / view.direction.z;
    Signal signal = {};
    signal.plan = &plan;
    signal.frequency = frequencyOf(satellite.getSystem(), satellite.getChannel(), index);
    const double wavelength = speedOfLight / signal.frequency;
    const double ratio = referenceFrequency / signal.frequency;
    const double delay = ionosphere * ratio * ratio;
    const double clocks = m_clockBias - view.sent.clock + satellite.getDelays()[index] +
                          systemDelays[indexOf(satellite.getSystem())];
    const double path =
        view.range + speedOfLight * clocks + m_zenithDelay * troposphericMapping(view.direction.z);

    const double kept = channel.isNew ? 0 : m_reflectionsKept;
    double& reflection = channel.reflections[index];
    reflection =
        reflection * kept + noise.normal(plan.codeNoise * Estimator::reflectionShare * lowness) *
                                std::sqrt(1 - kept * kept);
    signal.codeError = noise.normal(plan.codeNoise * lowness) + reflection;
    signal.code = path + delay + signal.codeError;
    signal.phaseError = noise.normal(BaselineEstimator::phaseNoise * lowness);
    signal.phase = (path - delay) / wavelength + channel.ambiguities[index] + signal.phaseError;
    signal.rangeRateError = noise.normal(Estimator::rangeRateNoise * lowness);
    const double drift = m_clockDrift - view.sent.clockDrift;
    signal.doppler = -(view.rangeRate + speedOfLight * drift + signal.rangeRateError) / wavelength;
    signal.cn0 = 36.5 + 14 * view.direction.z - plan.loss + noise.normal(0.4);
    return signal;
}

/// The second antenna is so near that its line of sight is parallel, and on the same clock.
void Receiver::observeSecond(Sight& sight, Geometry view, Channel& channel, bool isNew,
                             double ionosphere)
{
    view.range -= dot(m_secondAntenna.position, view.direction);
    view.rangeRate -= dot(m_secondAntenna.velocity, view.direction);
    channel.isNew = isNew;
    if (isNew) {
        for (double& ambiguity : channel.ambiguities)
            ambiguity = static_cast<double>(m_secondNoise.below(2000)) - 1000;
    }
    sight.hasSecond = true;
    const Satellite& satellite = *sight.satellite;
    unsigned count = 0;
    for (unsigned i = 0; i < maxSignals; ++i) {
        if (sends(satellite.getSystem(), satellite.getNumber(), i)) {
            sight.secondSignals[count++] =
                measure(sight, view, channel, i, ionosphere, m_secondNoise);
        }
    }
    const Signal& here = sight.signals[0];
    const Signal& there = sight.secondSignals[0];
    m_baseline.add(satellite.getSvid(), view.direction, speedOfLight / here.frequency,
                   there.phaseError - here.phaseError, there.rangeRateError - here.rangeRateError);
}

void Receiver::observe(const Satellite& satellite, Channel& channel, const Geometry& view,
                       const Epoch& epoch)
{
    const double sine = view.direction.z;
    const double level = std::sqrt(1 - sine * sine);
    Sight& sight = m_sights.emplace_back();
    sight.satellite = &satellite;
    sight.channel = channel.number;
    sight.lockTime = epoch.elapsed - channel.since;
    sight.direction = view.direction;
    sight.rising = dot(view.sent.motion.velocity, m_frame.getUp()) > sine * view.rangeRate;
    sight.rangeRate = view.rangeRate;
    sight.sent = view.sent;
    const Direction direction = {sine, view.direction.y / level, view.direction.x / level};
    const double ionosphere = ionosphericDelay(m_place, direction, epoch.tow());
    const System system = satellite.getSystem();
    for (unsigned i = 0; i < maxSignals; ++i) {
        if (sends(system, satellite.getNumber(), i)) {
            sight.signals[sight.signalCount++] =
                measure(sight, view, channel, i, ionosphere, m_random);
        }
    }
    if (!m_secondChannels.empty()) {
        observeSecond(sight, view,
                      m_secondChannels[static_cast<size_t>(&channel - m_channels.data())],
                      channel.isNew, ionosphere);
    }
    channel.isNew = false;
    sight.used = sight.signalCount > 1;
    if (!sight.used)
        return;
    const Signal& first = sight.signals[0];
    const Signal& second = sight.signals[1];
    const IonoFree weights(first.frequency, second.frequency);
    m_estimator.add(
        system, view.direction, weights.a * first.codeError + weights.b * second.codeError,
        std::hypot(weights.a * first.plan->codeNoise, weights.b * second.plan->codeNoise),
        first.rangeRateError);
}

void Receiver::advance(const Epoch& epoch)
{
    constexpr double correlation = 90; // seconds over which reflections change
    m_reflectionsKept = std::exp((m_lastElapsed - epoch.elapsed) / correlation);
    m_step = epoch.elapsed - m_lastElapsed;
    m_lastElapsed = epoch.elapsed;
    advanceClock(epoch.elapsed);
    m_time = epoch.time - m_clockBias;
    const double moved = epoch.elapsed - m_clockBias;
    m_antenna = m_track.at(moved);
    m_secondAntenna = m_track.aheadAt(moved, antennaDistance);
    m_place = toGeodetic(m_antenna.position);
    m_frame = LocalFrame(m_place);
    m_zenithDelay = zenithTroposphere(m_place);
    selectCandidates(m_time);
    m_sights.clear();
    m_estimator.begin();
    m_baseline.begin();
    for (const size_t i : m_candidates) {
        Channel& channel = m_channels[i];
        const Geometry view = geometry(*m_satellites[i], channel.flight);
        const bool isBlocked = (m_blocked >> indexOf(m_satellites[i]->getSystem()) & 1U) != 0;
        if (view.direction.z >= std::sin(maskElevation / degrees) && !isBlocked) {
            if (channel.number == 0) {
                startTracking(channel, epoch);
            } else if (m_slipsPerHour > 0 && m_slips.chance(m_slipsPerHour * m_step / 3600)) {
                slip(channel, epoch);
            }
            observe(*m_satellites[i], channel, view, epoch);
        } else if (channel.number != 0) {
            m_numbersInUse[std::exchange(channel.number, uint8_t{0})] = false;
        }
    }
    m_estimator.solve({m_antenna, m_clockBias, m_clockDrift}, m_frame);
    m_baseline.solve(m_secondAntenna);
}

} // namespace tqx::simulation
