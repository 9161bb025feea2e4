#pragma once

#include "tqx/gnss/orbit/GlonassOrbit.h"
#include "tqx/simulation/Systems.h"

#include <array>
#include <cstddef>
#include <vector>

namespace tqx::simulation
{

/// Symmetric matrix of the x, y, z (or east, north, up) and clock terms.
using Covariance = std::array<std::array<double, 4>, 4>;

/// The truth that the receiver estimates.
struct Truth {
    Motion antenna;
    double clockBias;  ///< seconds
    double clockDrift; ///< seconds per second
};

/// The receiver's estimate. Covariances are local (east, north, up, clock), in metres and metres
/// per second.
struct Solution {
    Motion antenna;    ///< earth-fixed
    Geodetic position; ///< of the same point
    Vector velocity;   ///< east, north, up
    double clockBias;  ///< seconds
    double clockDrift; ///< seconds per second
    Covariance positionCovariance;
    Covariance velocityCovariance;
    Covariance cofactors; ///< of the position with equal weights, for the dilution of precision
    std::array<uint8_t, systemCount> used; ///< satellites
    /// By how much the codes of a system are longer than those of GPS, without the receiver's path
    /// delays, and the variance; metres.
    std::array<double, systemCount> offsets;
    std::array<double, systemCount> offsetVariances;
    double positionTest; ///< sum of squared weighted residuals
    double velocityTest;
    unsigned positionRedundancy;
    unsigned velocityRedundancy;

    unsigned usedSatellites() const;
};

/// The residual of a measurement, in its unit.
struct Residual {
    double value;
    double deviation;  ///< of the residual
    double detectable; ///< smallest error of the measurement that the test finds
};

/// Weighted least squares from ionosphere-free codes and Dopplers of all satellites, with a clock
/// for each system. Its input are the errors of the measurements instead of their values, and it is
/// linear around the truth: its results scatter as its covariances say.
class Estimator
{
public:
    /// Deviation of the effect of reflections on a code, relative to that of its noise.
    static constexpr double reflectionShare = 1;
    /// Deviation of a range rate at the zenith, metres per second.
    static constexpr double rangeRateNoise = 0.008;

    void begin();

    /// Adds a satellite in a direction (east, north, up) with the error of its code and that
    /// error's deviation at the zenith, metres, and the error of its range rate.
    void add(System system, const Vector& direction, double codeError, double codeNoise,
             double rateError);

    void solve(const Truth& truth, const LocalFrame& frame);

    const Solution& getSolution() const { return m_solution; }

    /// Residuals of the satellite added as number `index` since begin(), from 0.
    Residual codeResidual(size_t index) const;
    Residual rateResidual(size_t index) const;

private:
    static constexpr size_t positionUnknowns = 3 + systemCount;

    template<size_t size>
    struct Equations {
        std::array<std::array<double, size>, size> normal;
        std::array<double, size> right;
        double squares; ///< of the weighted observations
    };

    template<size_t size>
    struct Solved {
        std::array<std::array<double, size>, size> inverse;
        std::array<double, size> unknowns;
    };
    struct Observation {
        std::array<double, positionUnknowns> row;
        double codeError;
        double codeWeight;
        double rateError;
        double rateWeight;
    };

    std::vector<Observation> m_observations;
    Solved<positionUnknowns> m_place = {};
    Solved<4> m_speed = {};
    Equations<positionUnknowns> m_position = {};
    Equations<positionUnknowns> m_dilution = {};
    Equations<4> m_velocity = {};
    Solution m_solution = {};
};

} // namespace tqx::simulation
