#pragma once

#include "tqx/gnss/orbit/GlonassOrbit.h"

#include <array>
#include <cstdint>

namespace tqx::simulation
{

/// What a receiver finds of the vector between two antennas, and with it of the attitude of the
/// vehicle that both are on.
struct Baseline {
    unsigned satellites; ///< that both measure
    uint8_t reference;   ///< identifier of the highest one
    bool isKnown;        ///< false with too few satellites; all that follows has no value then
    Motion vector;       ///< from the first to the second: east, north and up
    std::array<std::array<double, 3>, 3> covariance; ///< of the vector, square metres

    // Of the way from the first antenna to the second, degrees and degrees per second.
    double heading; ///< clockwise from north, 0 to 360
    double pitch;   ///< above the horizon
    double headingRate;
    double pitchRate;
    double headingVariance;
    double pitchVariance;
    double headingPitchCovariance;
};

/// Weighted least squares from the difference of the carrier phases of both antennas, all cycles of
/// which are known, and of their Dopplers, with the difference of the clocks of the antennas as
/// another unknown. As the Estimator it is given errors, and is linear around the truth.
class BaselineEstimator
{
public:
    /// Deviation of a phase at the zenith, cycles.
    static constexpr double phaseNoise = 0.005;

    void begin();

    /// Adds a satellite in a direction (east, north, up) with what errors make of the phase of the
    /// second antenna minus that of the first (cycles of that many metres), and of the range rate.
    void add(uint8_t satellite, const Vector& direction, double wavelength, double phaseError,
             double rateError);

    /// `truth` is the vector.
    void solve(const Motion& truth);

    const Baseline& getBaseline() const { return m_baseline; }

private:
    void findAngles();

    std::array<std::array<double, 4>, 4> m_normal = {}; ///< lower half
    std::array<double, 4> m_phases = {};
    std::array<std::array<double, 4>, 4> m_rateNormal = {};
    std::array<double, 4> m_rates = {};
    double m_highest = 0;
    Baseline m_baseline = {};
};

} // namespace tqx::simulation
