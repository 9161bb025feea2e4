#include "tqx/simulation/Satellite.h"

#include "tqx/simulation/Signals.h"

#include <algorithm>
#include <cmath>

namespace tqx::simulation
{

namespace
{

constexpr double nodeDistance = 60; // seconds

/// Cubic between two values with given rates, `part` of the distance after the first one.
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
    : m_system(nominal.system), m_number(nominal.number), m_channel(nominal.channel),
      m_origin(start), m_clockBias(rounded(random.uniform(-4e-4, 4e-4), 0x1p-34)),
      m_clockDrift(rounded(random.uniform(-1e-11, 1e-11), 0x1p-43)),
      m_firstNode(static_cast<int64_t>(std::floor(start / nodeDistance)) - 1)
{
    makeDelays(random);
    if (m_system == System::Glonass) {
        m_lastTime = static_cast<double>(m_firstNode) * nodeDistance;
        NominalSatellite real = nominal;
        real.semiMajorAxis += random.uniform(-3000, 3000);
        real.inclination += random.uniform(-0.5, 0.5);
        m_lastMotion = circularMotion(real, m_lastTime);
    } else {
        makeElements(nominal, random);
    }
    for (size_t i = 0; i < m_nodes.size(); ++i) {
        m_nodes[i] =
            nodeAt(static_cast<double>(m_firstNode + static_cast<int64_t>(i)) * nodeDistance);
    }
}

/// Rates and corrections as they are seen in broadcast ephemerides, in the steps of the messages.
void Satellite::makeElements(const NominalSatellite& nominal, Random& random)
{
    const bool isGps = m_system == System::Gps;
    const auto any = [&random](double limit, double step) {
        return rounded(random.uniform(-limit, limit), step);
    };
    const double perigee = rounded(random.uniform(-1, 1), 0x1p-31);
    // First the mean motion of all satellites of the system, from an almanac that may be old.
    m_elements.sqrtA = std::sqrt(nominal.semiMajorAxis);
    m_elements.motionCorrection = 1.4e-9;
    m_elements.nodeRate = -2.2e-9;
    m_elements.ascendingNode = nominal.ascendingNode / 180;
    m_elements.meanAnomaly = nominal.latitudeArgument / 180 - perigee;
    m_elements = advanced(m_elements, earthModel(m_system), m_origin);
    m_elements.sqrtA =
        rounded(std::sqrt(nominal.semiMajorAxis + random.uniform(-1500, 1500)), 0x1p-19);
    m_elements.eccentricity =
        rounded(isGps ? random.uniform(0.0005, 0.018) : random.uniform(1e-5, 8e-4), 0x1p-33);
    m_elements.inclination = (nominal.inclination + random.uniform(-0.8, 0.8)) / 180;
    m_elements.perigee = perigee;
    m_elements.motionCorrection = rounded(random.uniform(1.1e-9, 1.7e-9), 0x1p-43);
    m_elements.nodeRate = rounded(random.uniform(-2.75e-9, -1.7e-9), 0x1p-43);
    m_elements.inclinationRate = any(1.6e-10, 0x1p-43);
    m_elements.cuc = any(6e-6, 0x1p-29);
    m_elements.cus = rounded(random.uniform(2e-6, 1.2e-5), 0x1p-29);
    m_elements.crc = rounded(random.uniform(150, 330), 0x1p-5);
    m_elements.crs = any(120, 0x1p-5);
    m_elements.cic = any(2e-7, 0x1p-29);
    m_elements.cis = any(2e-7, 0x1p-29);
    if (m_system == System::Sbas)
        m_elements.eccentricity = 0; // its messages do not cover what that does to the clock
}

/// The group delay parameters refer to pairs of signals, and the clock to a combination of them in
/// which they cancel: L1 and L2 of GPS, E1 and E5b of Galileo; to B3I of BeiDou and L1 of GLONASS.
void Satellite::makeDelays(Random& random)
{
    const auto ratio = [this](unsigned signal) {
        const double r =
            frequencyOf(m_system, m_channel, 0) / frequencyOf(m_system, m_channel, signal);
        return r * r;
    };
    m_groupDelays = {rounded(random.uniform(-8e-9, 8e-9), 1e-10),
                     rounded(random.uniform(-8e-9, 8e-9), 1e-10)};
    if (m_system == System::Gps || m_system == System::Galileo) {
        for (double& delay : m_groupDelays)
            delay = rounded(delay, m_system == System::Gps ? 0x1p-31 : 0x1p-32);
    }
    const auto [first, second] = m_groupDelays;
    switch (m_system) {
    case System::Gps:
        m_delays = {first, ratio(1) * first, ratio(2) * first};
        break;
    case System::Glonass:
        m_groupDelays[0] = rounded(first, 0x1p-30);
        m_delays = {0, m_groupDelays[0], 0};
        break;
    case System::Galileo: // first: E1 and E5a, second: E1 and E5b
        m_delays = {second, second + (ratio(1) - 1) * first, ratio(2) * second};
        break;
    case System::BeiDou:
        m_delays = {first, 0, second};
        break;
    case System::Qzss:
        m_delays = {first, ratio(1) * first, ratio(2) * first};
        break;
    case System::NavIc:
    case System::Sbas:
        m_groupDelays = {0, 0}; // all signals leave together
        break;
    }
}

bool Satellite::isGeosynchronous() const
{
    return m_system == System::BeiDou && m_elements.sqrtA > 6000;
}

Satellite::Node Satellite::nodeAt(double time)
{
    if (m_system == System::Glonass) {
        m_lastMotion = integrated(m_lastMotion, m_lastTime, time);
        m_lastTime = time;
        return {m_lastMotion, 0, 0};
    }
    constexpr double half = 0.5;
    const EarthModel& model = earthModel(m_system);
    const KeplerPoint before = pointAt(m_elements, model, time - half - m_origin);
    const KeplerPoint here = pointAt(m_elements, model, time - m_origin);
    const KeplerPoint after = pointAt(m_elements, model, time + half - m_origin);
    return {{here.position, (after.position - before.position) * (0.5 / half)},
            here.relativity,
            (after.relativity - before.relativity) * (0.5 / half)};
}

void Satellite::moveTo(double time)
{
    const auto wanted = static_cast<int64_t>(std::floor(time / nodeDistance)) - 1;
    for (; m_firstNode < wanted; ++m_firstNode) {
        std::rotate(m_nodes.begin(), m_nodes.begin() + 1, m_nodes.end());
        m_nodes.back() = nodeAt(static_cast<double>(m_firstNode + 4) * nodeDistance);
    }
}

SatelliteState Satellite::stateAt(double time) const
{
    const double place = time / nodeDistance - static_cast<double>(m_firstNode);
    const auto index = static_cast<size_t>(std::clamp(place, 0.0, 2.0));
    const Node& from = m_nodes[index];
    const Node& to = m_nodes[index + 1];
    const Hermite hermite(place - static_cast<double>(index));
    return {{hermite.value(from.motion.position, from.motion.velocity, to.motion.position,
                           to.motion.velocity),
             hermite.rate(from.motion.position, from.motion.velocity, to.motion.position,
                          to.motion.velocity)},
            clockAt(time) + hermite.value(from.relativity, from.relativityRate, to.relativity,
                                          to.relativityRate),
            m_clockDrift + hermite.rate(from.relativity, from.relativityRate, to.relativity,
                                        to.relativityRate)};
}

KeplerElements Satellite::elementsAt(double time) const
{
    return advanced(m_elements, earthModel(m_system), time - m_origin);
}

Motion Satellite::motionAt(double time) const
{
    return integrated(m_lastMotion, m_lastTime, time);
}

} // namespace tqx::simulation
