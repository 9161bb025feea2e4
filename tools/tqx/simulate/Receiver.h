#pragma once

#include "Constellation.h"

#include <array>
#include <map>
#include <vector>

namespace tool
{

/// A moment of the simulation.
struct Epoch {
    uint16_t week;
    uint32_t towMillis;
    double elapsed; ///< seconds since the start

    double tow() const { return towMillis * 1e-3; }
};

/// One signal of a satellite as the receiver measures it.
struct Signal {
    uint8_t number;   ///< 0 GPS L1 C/A, 3 L2C, 4 L5
    double frequency; ///< hertz
    double code;      ///< metres
    double phase;     ///< cycles
    double doppler;   ///< hertz
    double cn0;       ///< dB-Hz
};

/// One tracked satellite.
struct Sight {
    uint8_t prn;
    uint8_t channel;
    double azimuth;   ///< degrees
    double elevation; ///< degrees
    bool rising;
    double lockTime; ///< seconds
    Ephemeris ephemeris;
    std::vector<Signal> signals;
};

/// What the receiver computes.
struct Solution {
    Geodetic position;
    Vector velocity;   ///< east, north, up, metres per second
    double clockBias;  ///< seconds
    double clockDrift; ///< seconds per second
};

/// A receiver with a static antenna: what it tracks and measures, and the position it finds.
class Receiver
{
public:
    Receiver(Random& random, uint16_t week, double tow);

    /// Moves to an epoch; epochs come in order.
    void advance(const Epoch& epoch);

    const std::vector<Sight>& getSights() const { return sights; }
    const Solution& getSolution() const { return solution; }

    /// Milliseconds by which the clock has been set back or forth, modulo 256.
    uint8_t getClockJumps() const { return static_cast<uint8_t>(clockJumps & 0xff); }

    /// Height of the geoid above the ellipsoid at the antenna, metres.
    static constexpr double undulation = 44.5;

private:
    struct Track {
        uint8_t channel;
        double since; ///< elapsed seconds at which tracking began
        std::array<double, 3> ambiguities;
        bool isNew = true;
    };
    struct Geometry {
        double range;
        double azimuth;
        double elevation;
    };

    Geometry geometry(const Ephemeris& ephemeris, uint16_t week, double tow) const;
    void advanceClock(double elapsed);
    void solve(const Epoch& epoch);
    Sight observe(uint8_t prn, const Geometry& view, const Ephemeris& ephemeris,
                  const Epoch& epoch);
    uint8_t freeChannel() const;

    Random& random;
    Constellation constellation;
    Geodetic antenna;
    Vector antennaFixed;
    LocalFrame frame;
    std::map<uint8_t, Track> tracks; ///< by satellite
    std::vector<Sight> sights;
    Solution solution = {};
    Vector error = {};    ///< slow part of the position error, east, north, up
    double initialBias;   ///< of the clock, seconds
    double clockDrift;    ///< seconds per second
    double clockBias = 0; ///< seconds
    double lastElapsed = 0;
    int clockJumps = 0;
};

} // namespace tool
