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

/// A satellite as it really is: its motion and its clock. Those of GPS, Galileo and BeiDou are on
/// Kepler orbits with corrections, those of GLONASS follow the equations of motion. Times are
/// seconds of GPS time since the start of the almanac week.
class Satellite
{
public:
    /// Near its nominal place, by how much is random.
    Satellite(const NominalSatellite& nominal, Random& random, double start);

    System getSystem() const { return system; }
    unsigned getNumber() const { return number; }
    int getChannel() const { return channel; }
    uint8_t getSvid() const { return svidOf(system, number); }
    bool isGeosynchronous() const;

    /// Makes stateAt() good for times from a minute before `time` to two minutes behind it. Times
    /// must not go back.
    void moveTo(double time);

    /// Interpolated between whole minutes; off by less than a millimetre.
    SatelliteState stateAt(double time) const;

    /// The Kepler elements for a reference time; not of GLONASS.
    KeplerElements elementsAt(double time) const;

    /// The motion integrated to a time near that of moveTo(); of GLONASS only.
    Motion motionAt(double time) const;

    /// The clock without what changing speed does to it, seconds ahead of GPS time.
    double clockAt(double time) const { return clockBias + clockDrift * (time - origin); }
    double getClockDrift() const { return clockDrift; }

    /// By how many seconds each signal leaves late.
    const std::array<double, maxSignals>& getDelays() const { return delays; }
    /// The parameters that tell the delays in navigation messages.
    const std::array<double, 2>& getGroupDelays() const { return groupDelays; }

private:
    struct Node {
        Motion motion;
        double relativity;
        double relativityRate;
    };

    void makeElements(const NominalSatellite& nominal, Random& random);
    void makeDelays(Random& random);
    Node nodeAt(double time);

    System system;
    unsigned number;
    int channel;
    double origin; ///< reference time of elements and clock
    KeplerElements elements = {};
    double clockBias;
    double clockDrift;
    std::array<double, maxSignals> delays = {};
    std::array<double, 2> groupDelays = {};
    Motion lastMotion = {}; ///< of GLONASS, at lastTime
    double lastTime = 0;
    int64_t firstNode;
    std::array<Node, 4> nodes = {}; ///< a minute apart, nodes[0] at firstNode
};

} // namespace tqx::simulation
