#pragma once

#include "tqx/simulation/Atmosphere.h"
#include "tqx/simulation/Baseline.h"
#include "tqx/simulation/Estimator.h"
#include "tqx/simulation/Signals.h"
#include "tqx/simulation/Track.h"

#include <memory>
#include <optional>
#include <vector>

namespace tqx::simulation
{

/// A moment of the simulation: what the receiver's clock shows at the end of a measurement.
struct Epoch {
    uint16_t week;
    uint32_t towMillis;
    double elapsed; ///< seconds since the start
    double time;    ///< seconds since the start of the almanac week

    double tow() const { return towMillis * 1e-3; }
};

/// One signal of a satellite as the receiver measures it.
struct Signal {
    const SignalPlan* plan;
    double frequency;      ///< hertz
    double code;           ///< metres
    double phase;          ///< cycles
    double doppler;        ///< hertz
    double cn0;            ///< dB-Hz
    double codeError;      ///< metres that noise and reflections add
    double phaseError;     ///< cycles that noise adds
    double rangeRateError; ///< metres per second that noise adds
};

/// One tracked satellite.
struct Sight {
    const Satellite* satellite;
    uint8_t channel;
    double lockTime;  ///< seconds
    Vector direction; ///< east, north, up; of length 1
    bool rising;
    bool used;           ///< in the position
    double rangeRate;    ///< metres per second, clocks left out
    SatelliteState sent; ///< when the signal left
    unsigned signalCount;
    std::array<Signal, maxSignals> signals;
    bool hasSecond; ///< the second antenna measures it, too
    std::array<Signal, maxSignals> secondSignals;

    /// In degrees, clockwise from north and above the horizon.
    double azimuth() const;
    double elevation() const;
};

/// Settings of a receiver.
struct ReceiverSettings {
    unsigned systems = globalSystems; ///< bits of those that it tracks
    std::optional<double> clockDrift; ///< seconds per second, random without
    bool hasSecondAntenna = false;    ///< which measures, and with which there is an attitude
    double slipsPerHour = 0;          ///< of each satellite, on all of its signals at once
    bool hidesSlips = false;          ///< the receiver does not notice them
};

/// A receiver and its antenna: what it tracks and measures, and the position it finds.
class Receiver
{
public:
    /// `start` in seconds since the start of the almanac week.
    Receiver(Random& random, const TrackSettings& track, double start,
             const ReceiverSettings& settings = {});

    /// Moves to an epoch; epochs come in order.
    void advance(const Epoch& epoch);

    /// All of the systems that it tracks, above the horizon and below.
    const std::vector<std::unique_ptr<Satellite>>& getSatellites() const { return m_satellites; }
    const std::vector<Sight>& getSights() const { return m_sights; }
    /// For faults to be applied to the measurements after the position has been computed.
    std::vector<Sight>& getSights() { return m_sights; }

    /// Bits of systems that are not received from the next epoch on.
    void setBlocked(unsigned systems) { m_blocked = systems; }

    /// Age of the differential corrections that the position is computed with, seconds; nothing
    /// without them.
    void setCorrectionAge(std::optional<double> age) { m_correctionAge = age; }
    std::optional<double> getCorrectionAge() const { return m_correctionAge; }
    const Solution& getSolution() const { return m_estimator.getSolution(); }
    /// Its satellites are those of getSights() that are used, in the same order.
    const Estimator& getEstimator() const { return m_estimator; }
    const Track& getTrack() const { return m_track; }
    /// True position of the antenna on the ellipsoid.
    const Geodetic& getPlace() const { return m_place; }

    /// Total of the clock jumps in milliseconds, modulo 256.
    uint8_t getClockJumps() const { return static_cast<uint8_t>(m_clockJumps & 0xff); }

    /// Seconds by which the receiver's paths delay the signals of a system relative to GPS.
    static constexpr std::array<double, systemCount> systemDelays = {
        0, 31.7e-9, 4.3e-9, -12.9e-9, 0.6e-9, 18.2e-9, 1.1e-9};

    /// Height of the geoid above the ellipsoid at the antenna, metres.
    static constexpr double undulation = 44.5;

    /// Metres by which the second antenna is ahead of the first on the vehicle, which is level.
    static constexpr double antennaDistance = 1.5;

    bool hasSecondAntenna() const { return !m_secondChannels.empty(); }
    /// From the first antenna to the second, from the carrier phases of both.
    const Baseline& getBaseline() const { return m_baseline.getBaseline(); }

    /// Satellites below are not tracked, degrees.
    static constexpr double maskElevation = 5;

private:
    /// What the receiver remembers about a satellite from epoch to epoch.
    struct Channel {
        uint8_t number = 0; ///< 0 while it is not tracked
        double since = 0;   ///< elapsed seconds at which tracking began
        double flight = 0.08;
        bool isNew = true;
        std::array<double, maxSignals> ambiguities = {};
        std::array<double, maxSignals> reflections = {};
    };
    struct Geometry {
        double range;
        double rangeRate;
        Vector direction; ///< east, north, up; of length 1
        SatelliteState sent;
    };

    void advanceClock(double elapsed);
    void selectCandidates(double time);
    Geometry geometry(const Satellite& satellite, double& flight) const;
    void slip(Channel& channel, const Epoch& epoch);
    void startTracking(Channel& channel, const Epoch& epoch);
    void observe(const Satellite& satellite, Channel& channel, const Geometry& view,
                 const Epoch& epoch);
    void observeSecond(Sight& sight, Geometry view, Channel& channel, bool isNew,
                       double ionosphere);
    Signal measure(const Sight& sight, const Geometry& view, Channel& channel, unsigned index,
                   double ionosphere, Random& noise);

    Random& m_random;
    // These have their own random numbers, so that everything else stays the same.
    Random m_slips;
    Random m_secondNoise;
    std::vector<Channel> m_secondChannels; ///< of the second antenna, by satellite; may be empty
    double m_slipsPerHour;
    unsigned m_blocked = 0;
    std::optional<double> m_correctionAge;
    bool m_hidesSlips;
    double m_step = 0; ///< seconds since the last epoch
    Track m_track;
    std::vector<std::unique_ptr<Satellite>> m_satellites;
    std::vector<Channel> m_channels;  ///< by satellite
    std::vector<size_t> m_candidates; ///< satellites that may be above the mask
    std::vector<bool> m_numbersInUse;
    std::vector<Sight> m_sights;
    Estimator m_estimator;
    BaselineEstimator m_baseline;

    double m_initialBias;   ///< of the clock, seconds
    double m_clockDrift;    ///< seconds per second
    double m_clockBias = 0; ///< seconds ahead of GPS time
    int m_clockJumps = 0;
    double m_candidatesUntil = -1e300;
    double m_lastElapsed = 0;
    double m_reflectionsKept = 0; ///< part of the reflections that the last epoch leaves
    double m_time = 0;            ///< true time of the epoch
    Motion m_antenna = {};
    Geodetic m_place = {};
    LocalFrame m_frame;
    Motion m_secondAntenna = {}; ///< as seen from the first, east, north and up
    double m_zenithDelay = 0;    ///< of the troposphere, metres
};

} // namespace tqx::simulation
