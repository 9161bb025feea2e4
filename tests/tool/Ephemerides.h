#pragma once

#include <Eigen/Core>

#include <cstdint>
#include <map>
#include <optional>

class Message;

constexpr double lightSpeed = 299792458.0;
constexpr double earthRate = 7.2921151467e-5;

/// What the navigation messages of one satellite say, as their blocks hold it.
struct BroadcastOrbit {
    // Kepler elements (IS-GPS-200, Galileo OS SIS ICD, BDS-SIS-ICD); angles in semicircles.
    double toe, sqrtA, m0, deltaN, e, omega, omega0, omegaDot, i0, iDot;
    double cuc, cus, crc, crs, cic, cis;
    double af0, af1, af2;
    double gravitation, rotation, relativity;
    double behindGps; ///< seconds by which the system's time is
    // Or motion and clock of GLONASS at toe.
    bool isGlonass;
    Eigen::Vector3d position, velocity, acceleration;
    std::map<int, double> delays; ///< seconds, by signal number
};

/// Orbits by the algorithms that the interface documents give to users, from decoded blocks.
class Ephemerides
{
public:
    /// Keeps what the message holds if it is an ephemeris.
    void take(const Message& message);

    /// Earth-fixed position at a GPS time of the week, nothing without an ephemeris that is fresh.
    std::optional<Eigen::Vector3d> position(int svid, double tow) const;

    /// Seconds by which the clock that a signal refers to is ahead, delays of the signal included.
    double clock(int svid, int signal, double tow) const;

private:
    const BroadcastOrbit& orbitFor(int svid, int signal) const;

    /// By satellite, and 1000 more for the second message of Galileo (F/NAV) and BeiDou (B2b).
    std::map<int, BroadcastOrbit> m_orbits;
};
