#pragma once

#include "Ephemerides.h"

#include <array>
#include <vector>

class TQX_MeasEpoch2_Message;

/// Place on the ellipsoid WGS84, radians and metres.
struct Place {
    double latitude, longitude, height;
    Eigen::Vector3d up() const;
};

Place placeOf(const Eigen::Vector3d& position);
Eigen::Vector3d positionOf(const Place& place);

/// One code of a satellite.
struct Range {
    int signal;
    double code;
    double frequency;
    double rate; ///< metres per second, from the Doppler
};

struct Tracked {
    int svid;
    int system; ///< 0 GPS, 1 GLONASS, 2 Galileo, 3 BeiDou
    std::vector<Range> ranges;
};

/// The satellites of an epoch, as the message's own and derived values say.
std::vector<Tracked> trackedIn(const TQX_MeasEpoch2_Message& epoch);

struct Fix {
    Eigen::Vector3d position = Eigen::Vector3d::Zero();
    Eigen::Vector3d velocity = Eigen::Vector3d::Zero();
    Eigen::Matrix3d covariance = Eigen::Matrix3d::Zero(); ///< of the position
    std::array<double, 4> clocks = {}; ///< by system, metres by which the receiver's is ahead
    size_t redundancy = 0;             ///< 0: no solution
};

/// Deviations of ionosphere-free codes at the zenith by system, metres.
constexpr double codeSigma[] = {0.55, 1.0, 0.35, 0.7};

/// Iterated weighted least squares from ionosphere-free codes and Dopplers, with a clock for each
/// system.
class Solver
{
public:
    /// `tow` is the time that the receiver's clock shows.
    Solver(const Ephemerides& known, double tow) : m_ephemerides(known), m_time(tow) {}

    /// From the systems whose bits are set.
    Fix solve(const std::vector<Tracked>& satellites, unsigned systems) const;

    /// What geometry, clocks and troposphere leave of a code, and where the satellite is.
    struct Unexplained {
        double metres;
        Eigen::Vector3d line; ///< from the antenna to the satellite
        double sinElevation;
    };
    Unexplained unexplained(const Tracked& satellite, const Range& range, const Fix& fix) const;

private:
    struct Row {
        Eigen::Vector3d direction;
        int system;
        double residual, rateResidual, weight;
    };

    Eigen::Vector3d lineTo(int svid, double sent, const Fix& fix) const;
    Row rowOf(const Tracked& satellite, const Fix& fix) const;
    void improve(Fix& fix, const std::vector<Row>& rows, unsigned systems) const;

    const Ephemerides& m_ephemerides;
    double m_time;
};
