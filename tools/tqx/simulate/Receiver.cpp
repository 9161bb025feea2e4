#include "Receiver.h"

#include <algorithm>
#include <cmath>

namespace tool
{

namespace
{

constexpr double degrees = 180 / pi;
constexpr double maskElevation = 5; // degrees
constexpr double warmUp = 600;      // seconds that everything has run before the log begins
constexpr double l1 = 1575420000;
constexpr double l2 = 1227600000;
constexpr double l5 = 1176450000;

struct SignalPlan {
    uint8_t number;
    double frequency;
    double codeNoise; ///< metres at the zenith
    double loss;      ///< dB against L1 C/A
};

constexpr SignalPlan signalPlans[] = {{0, l1, 0.12, 0}, {3, l2, 0.15, 2.5}, {4, l5, 0.06, -1.5}};

/// Newer satellites send more signals.
bool sends(uint8_t prn, size_t signal)
{
    return signal == 0 || (signal == 1 && prn % 4 != 0) || (signal == 2 && prn % 2 == 1);
}

/// Delays of the zenith grow with the path through the atmosphere.
double troposphere(double elevation)
{
    return 2.35 / std::sin(std::sqrt(elevation * elevation + 3.6) / degrees);
}

double ionosphere(double elevation, double frequency)
{
    const double thinShell = 0.9 * std::cos(elevation / degrees);
    const double ratio = l1 / frequency;
    return 3.0 / std::sqrt(1 - thinShell * thinShell) * ratio * ratio;
}

} // namespace

Receiver::Receiver(Random& source, uint16_t week, double tow)
    : random(source),
      constellation(source, week, tow), antenna{47.07 / degrees, 15.45 / degrees, 412.3},
      antennaFixed(toEarthFixed(antenna)), frame(antenna), initialBias(source.uniform(-3e-4, 3e-4)),
      clockDrift(source.uniform(-1.5e-7, 1.5e-7))
{
}

Receiver::Geometry Receiver::geometry(const Ephemeris& ephemeris, uint16_t week, double tow) const
{
    double flight = 0.075;
    Vector difference = {};
    for (int i = 0; i < 4; ++i) {
        const Vector sent = positionAt(ephemeris, week, tow - flight);
        // The earth turns while the signal travels.
        const double turn = earthRotation * flight;
        const Vector satellite = {sent.x * std::cos(turn) + sent.y * std::sin(turn),
                                  sent.y * std::cos(turn) - sent.x * std::sin(turn), sent.z};
        difference = satellite - antennaFixed;
        flight = length(difference) / speedOfLight;
    }
    const Vector local = frame.toLocal(difference);
    const double azimuth = std::atan2(local.x, local.y) * degrees;
    return {length(difference), azimuth < 0 ? azimuth + 360 : azimuth,
            std::asin(local.z / length(local)) * degrees};
}

/// The clock drifts, and is set by whole milliseconds to stay within half of one.
void Receiver::advanceClock(double elapsed)
{
    clockBias = initialBias + clockDrift * elapsed + clockJumps * 1e-3;
    while (std::fabs(clockBias) > 5e-4) {
        const int jump = clockBias > 0 ? -1 : 1;
        clockJumps += jump;
        clockBias += jump * 1e-3;
    }
}

uint8_t Receiver::freeChannel() const
{
    uint8_t channel = 1;
    while (std::any_of(tracks.begin(), tracks.end(),
                       [&](const auto& track) { return track.second.channel == channel; }))
        ++channel;
    return channel;
}

Sight Receiver::observe(uint8_t prn, const Geometry& view, const Ephemeris& ephemeris,
                        const Epoch& epoch)
{
    constexpr double half = 0.5;
    const Geometry before = geometry(ephemeris, epoch.week, epoch.tow() - half);
    const Geometry after = geometry(ephemeris, epoch.week, epoch.tow() + half);
    const auto [found, isNew] = tracks.try_emplace(prn, Track());
    Track& track = found->second;
    if (isNew) {
        track.channel = 0;
        track.channel = freeChannel();
        track.since = epoch.elapsed == 0 ? -warmUp : epoch.elapsed;
    }
    Sight sight = {prn,
                   track.channel,
                   view.azimuth,
                   view.elevation,
                   after.elevation > before.elevation,
                   epoch.elapsed - track.since,
                   ephemeris,
                   {}};
    const double clocks = clockBias - clockAt(ephemeris, epoch.week, epoch.tow());
    const double path = view.range + speedOfLight * clocks + troposphere(view.elevation);
    const double rate =
        after.range - before.range + speedOfLight * (clockDrift - ephemeris.clockDrift);
    const double lowness = 1 / std::sin(std::max(view.elevation, maskElevation) / degrees);
    for (size_t i = 0; i < std::size(signalPlans); ++i) {
        const SignalPlan& plan = signalPlans[i];
        const double wavelength = speedOfLight / plan.frequency;
        const double delay = ionosphere(view.elevation, plan.frequency);
        Signal signal = {};
        signal.number = plan.number;
        signal.frequency = plan.frequency;
        signal.code = path + delay + random.normal(plan.codeNoise * lowness);
        const double cycles = (path - delay) / wavelength;
        if (isNew)
            track.ambiguities[i] = std::round(signal.code / wavelength - cycles);
        signal.phase = cycles + track.ambiguities[i] + random.normal(0.005 * lowness);
        signal.doppler = -rate / wavelength + random.normal(0.02 * lowness);
        signal.cn0 =
            36.5 + 14 * std::sin(view.elevation / degrees) - plan.loss + random.normal(0.4);
        if (sends(prn, i))
            sight.signals.push_back(signal);
    }
    return sight;
}

void Receiver::solve(const Epoch& epoch)
{
    constexpr double correlation = 90; // seconds
    const double step = epoch.elapsed - lastElapsed;
    const double kept = std::exp(-step / correlation);
    const double added = std::sqrt(1 - kept * kept);
    const double horizontal = 0.6;
    error = {error.x * kept + random.normal(horizontal) * added,
             error.y * kept + random.normal(horizontal) * added,
             error.z * kept + random.normal(1.1) * added};
    const Vector noise = {random.normal(0.05), random.normal(0.05), random.normal(0.09)};
    solution.position = moved(antenna, error + noise);
    solution.velocity = {random.normal(0.012), random.normal(0.012), random.normal(0.025)};
    solution.clockBias = clockBias + random.normal(2e-9);
    solution.clockDrift = clockDrift + random.normal(3e-11);
    lastElapsed = epoch.elapsed;
}

void Receiver::advance(const Epoch& epoch)
{
    advanceClock(epoch.elapsed);
    sights.clear();
    for (size_t i = 0; i < constellation.size(); ++i) {
        const auto prn = static_cast<uint8_t>(i + 1);
        const Ephemeris ephemeris = constellation.ephemerisAt(i, epoch.week, epoch.tow());
        const Geometry view = geometry(ephemeris, epoch.week, epoch.tow());
        if (view.elevation >= maskElevation)
            sights.push_back(observe(prn, view, ephemeris, epoch));
        else
            tracks.erase(prn);
    }
    solve(epoch);
}

} // namespace tool
