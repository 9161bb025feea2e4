#include "tqx/simulation/Satellite.h"

#include "tqx/simulation/Signals.h"

#include <algorithm>
#include <cmath>

namespace tqx::simulation
{

namespace
{

constexpr double nodeDistance = 60; // seconds

/// Cubic between two values with given rates, `part` of the distance behind the first one.
struct Hermite {
    explicit Hermite(double part)
        : a((1 + 2 * part) * (1 - part) * (1 - part)), b(1 - a),
          c(part * (1 - part) * (1 - part) * nodeDistance),
          d(part * part * (part - 1) * nodeDistance), rateA(6 * part * (part - 1) / nodeDistance),
          rateC((1 - part) * (1 - 3 * part)), rateD(part * (3 * part - 2))
    {
    }

    template<typename T>
    T value(const T& from, const T& fromRate, const T& to, const T& toRate) const
    {
        return from * a + to * b + fromRate * c + toRate * d;
    }

    template<typename T>
    T rate(const T& from, const T& fromRate, const T& to, const T& toRate) const
    {
        return (from - to) * rateA + fromRate * rateC + toRate * rateD;
    }

    double a, b, c, d;
    double rateA, rateC, rateD;
};

/// Speed in the rotating frame on a circle.
Motion circularMotion(const NominalSatellite& nominal, double sinceAlmanac)
{
    constexpr double degree = pi / 180;
    constexpr double gravitation = 3.986004418e14;
    constexpr double rotation = 7.292115e-5;
    const double axis = nominal.semiMajorAxis;
    const double motion = std::sqrt(gravitation / (axis * axis * axis));
    const double argument = nominal.latitudeArgument * degree + motion * sinceAlmanac;
    const double node = nominal.ascendingNode * degree - rotation * sinceAlmanac;
    const double tilt = nominal.inclination * degree;
    const Vector toNode = {std::cos(node), std::sin(node), 0};
    const Vector ahead = {-std::sin(node) * std::cos(tilt), std::cos(node) * std::cos(tilt),
                          std::sin(tilt)};
    const Vector position = (toNode * std::cos(argument) + ahead * std::sin(argument)) * axis;
    const Vector velocity =
        (ahead * std::cos(argument) - toNode * std::sin(argument)) * (axis * motion);
    return {position,
            {velocity.x + rotation * position.y, velocity.y - rotation * position.x, velocity.z}};
}

} // namespace

Satellite::Satellite(const NominalSatellite& nominal, Random& random, double start)
    : system(nominal.system), number(nominal.number), channel(nominal.channel), origin(start),
      clockBias(rounded(random.uniform(-4e-4, 4e-4), 0x1p-34)),
      clockDrift(rounded(random.uniform(-1e-11, 1e-11), 0x1p-43)),
      firstNode(static_cast<int64_t>(std::floor(start / nodeDistance)) - 1)
{
    makeDelays(random);
    if (system == System::Glonass) {
        lastTime = static_cast<double>(firstNode) * nodeDistance;
        NominalSatellite real = nominal;
        real.semiMajorAxis += random.uniform(-3000, 3000);
        real.inclination += random.uniform(-0.5, 0.5);
        lastMotion = circularMotion(real, lastTime);
    } else {
        makeElements(nominal, random);
    }
    for (size_t i = 0; i < nodes.size(); ++i)
        nodes[i] = nodeAt(static_cast<double>(firstNode + static_cast<int64_t>(i)) * nodeDistance);
}

/// Rates and corrections as they are seen in broadcast ephemerides, in the steps of the messages.
void Satellite::makeElements(const NominalSatellite& nominal, Random& random)
{
    const bool isGps = system == System::Gps;
    const auto any = [&random](double limit, double step) {
        return rounded(random.uniform(-limit, limit), step);
    };
    const double perigee = rounded(random.uniform(-1, 1), 0x1p-31);
    // First the mean way of all satellites of the system, from an almanac that may be old.
    elements.sqrtA = std::sqrt(nominal.semiMajorAxis);
    elements.motionCorrection = 1.4e-9;
    elements.nodeRate = -2.2e-9;
    elements.ascendingNode = nominal.ascendingNode / 180;
    elements.meanAnomaly = nominal.latitudeArgument / 180 - perigee;
    elements = advanced(elements, earthModel(system), origin);
    elements.sqrtA =
        rounded(std::sqrt(nominal.semiMajorAxis + random.uniform(-1500, 1500)), 0x1p-19);
    elements.eccentricity =
        rounded(isGps ? random.uniform(0.0005, 0.018) : random.uniform(1e-5, 8e-4), 0x1p-33);
    elements.inclination = (nominal.inclination + random.uniform(-0.8, 0.8)) / 180;
    elements.perigee = perigee;
    elements.motionCorrection = rounded(random.uniform(1.1e-9, 1.7e-9), 0x1p-43);
    elements.nodeRate = rounded(random.uniform(-2.75e-9, -1.7e-9), 0x1p-43);
    elements.inclinationRate = any(1.6e-10, 0x1p-43);
    elements.cuc = any(6e-6, 0x1p-29);
    elements.cus = rounded(random.uniform(2e-6, 1.2e-5), 0x1p-29);
    elements.crc = rounded(random.uniform(150, 330), 0x1p-5);
    elements.crs = any(120, 0x1p-5);
    elements.cic = any(2e-7, 0x1p-29);
    elements.cis = any(2e-7, 0x1p-29);
}

/// The group delay parameters refer to pairs of signals, and the clock to a combination of them in
/// which they cancel: L1 and L2 of GPS, E1 and E5b of Galileo; to B3I of BeiDou and L1 of GLONASS.
void Satellite::makeDelays(Random& random)
{
    const auto ratio = [this](unsigned signal) {
        const double r = frequencyOf(system, channel, 0) / frequencyOf(system, channel, signal);
        return r * r;
    };
    groupDelays = {rounded(random.uniform(-8e-9, 8e-9), 1e-10),
                   rounded(random.uniform(-8e-9, 8e-9), 1e-10)};
    if (system == System::Gps || system == System::Galileo)
        for (double& delay : groupDelays)
            delay = rounded(delay, system == System::Gps ? 0x1p-31 : 0x1p-32);
    const auto [first, second] = groupDelays;
    switch (system) {
    case System::Gps:
        delays = {first, ratio(1) * first, ratio(2) * first};
        break;
    case System::Glonass:
        groupDelays[0] = rounded(first, 0x1p-30);
        delays = {0, groupDelays[0], 0};
        break;
    case System::Galileo: // first: E1 and E5a, second: E1 and E5b
        delays = {second, second + (ratio(1) - 1) * first, ratio(2) * second};
        break;
    case System::BeiDou:
        delays = {first, 0, second};
        break;
    case System::Qzss:
    case System::NavIc:
    case System::Sbas:
        break;
    }
}

bool Satellite::isGeosynchronous() const
{
    return system == System::BeiDou && elements.sqrtA > 6000;
}

Satellite::Node Satellite::nodeAt(double time)
{
    if (system == System::Glonass) {
        lastMotion = integrated(lastMotion, lastTime, time);
        lastTime = time;
        return {lastMotion, 0, 0};
    }
    constexpr double half = 0.5;
    const EarthModel& model = earthModel(system);
    const KeplerPoint before = pointAt(elements, model, time - half - origin);
    const KeplerPoint here = pointAt(elements, model, time - origin);
    const KeplerPoint after = pointAt(elements, model, time + half - origin);
    return {{here.position, (after.position - before.position) * (0.5 / half)},
            here.relativity,
            (after.relativity - before.relativity) * (0.5 / half)};
}

void Satellite::moveTo(double time)
{
    const auto wanted = static_cast<int64_t>(std::floor(time / nodeDistance)) - 1;
    for (; firstNode < wanted; ++firstNode) {
        std::rotate(nodes.begin(), nodes.begin() + 1, nodes.end());
        nodes.back() = nodeAt(static_cast<double>(firstNode + 4) * nodeDistance);
    }
}

SatelliteState Satellite::stateAt(double time) const
{
    const double place = time / nodeDistance - static_cast<double>(firstNode);
    const auto index = static_cast<size_t>(std::clamp(place, 0.0, 2.0));
    const Node& from = nodes[index];
    const Node& to = nodes[index + 1];
    const Hermite hermite(place - static_cast<double>(index));
    return {{hermite.value(from.motion.position, from.motion.velocity, to.motion.position,
                           to.motion.velocity),
             hermite.rate(from.motion.position, from.motion.velocity, to.motion.position,
                          to.motion.velocity)},
            clockAt(time) + hermite.value(from.relativity, from.relativityRate, to.relativity,
                                          to.relativityRate),
            clockDrift + hermite.rate(from.relativity, from.relativityRate, to.relativity,
                                      to.relativityRate)};
}

KeplerElements Satellite::elementsAt(double time) const
{
    return advanced(elements, earthModel(system), time - origin);
}

Motion Satellite::motionAt(double time) const
{
    return integrated(lastMotion, lastTime, time);
}

} // namespace tqx::simulation
