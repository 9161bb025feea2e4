#pragma once

#include "tqx/gnss/orbit/GlonassOrbit.h"
#include "tqx/gnss/orbit/Kepler.h"
#include "tqx/simulation/Almanac.h"
#include "tqx/simulation/Random.h"

#include <array>

namespace tqx::simulation
{

/// Most signals that the receiver tracks of a satellite.
constexpr unsigned maxSignals = 3;

/// Where a satellite is, and by how much its clock is ahead of GPS time.
struct SatelliteState {
    Motion motion;
    double clock;      ///< seconds
    double clockDrift; ///< seconds per second
};

/// The true motion and clock of a satellite. Those of GPS, Galileo and BeiDou are on Kepler orbits
/// with corrections, those of GLONASS follow the equations of motion. Times are seconds of GPS time
/// since the start of the almanac week.
class Satellite
{
public:
    /// Starts near its nominal place, at a random distance.
    Satellite(const NominalSatellite& nominal, Random& random, double start);

    System getSystem() const { return m_system; }
    unsigned getNumber() const { return m_number; }
    int getChannel() const { return m_channel; }
    uint8_t getSvid() const { return svidOf(m_system, m_number); }
    bool isGeosynchronous() const;

    /// Makes stateAt() valid for times from a minute before `time` to two minutes after it. Times
    /// must not decrease.
    void moveTo(double time);

    /// Interpolated between whole minutes; off by less than a millimetre.
    SatelliteState stateAt(double time) const;

    /// The Kepler elements for a reference time; not of GLONASS.
    KeplerElements elementsAt(double time) const;

    /// The motion integrated to a time, which takes the longer the farther it is from that of
    /// moveTo(); of GLONASS only.
    Motion motionAt(double time) const;

    /// The clock without the effect of changing speed, seconds ahead of GPS time.
    double clockAt(double time) const { return m_clockBias + m_clockDrift * (time - m_origin); }
    double getClockDrift() const { return m_clockDrift; }

    /// Seconds by which each signal leaves late.
    const std::array<double, maxSignals>& getDelays() const { return m_delays; }
    /// The parameters of these delays in navigation messages.
    const std::array<double, 2>& getGroupDelays() const { return m_groupDelays; }

private:
    struct Node {
        Motion motion;
        double relativity;
        double relativityRate;
    };

    void makeElements(const NominalSatellite& nominal, Random& random);
    void makeDelays(Random& random);
    Node nodeAt(double time);

    System m_system;
    unsigned m_number;
    int m_channel;
    double m_origin; ///< reference time of elements and clock
    KeplerElements m_elements = {};
    double m_clockBias;
    double m_clockDrift;
    std::array<double, maxSignals> m_delays = {};
    std::array<double, 2> m_groupDelays = {};
    Motion m_lastMotion = {}; ///< of GLONASS, at lastTime
    double m_lastTime = 0;
    int64_t m_firstNode;
    std::array<Node, 4> m_nodes = {}; ///< a minute apart, nodes[0] at firstNode
};

} // namespace tqx::simulation
