#include "tqx/simulation/Baseline.h"

#include "tqx/simulation/Estimator.h"
#include "tqx/simulation/LeastSquares.h"

#include <cmath>

namespace tqx::simulation
{

namespace
{

constexpr double degrees = 180 / pi;
constexpr unsigned fewest = 5; // one more than there are unknowns

void addRow(Matrix<4>& normal, std::array<double, 4>& right, const std::array<double, 4>& row,
            double error, double weight)
{
    for (size_t i = 0; i < 4; ++i) {
        for (size_t j = 0; j <= i; ++j)
            normal[i][j] += weight * row[i] * row[j];
        right[i] += weight * row[i] * error;
    }
}

} // namespace

void BaselineEstimator::begin()
{
    m_normal = {};
    m_phases = {};
    m_rateNormal = {};
    m_rates = {};
    m_highest = 0;
    m_baseline = {};
}

void BaselineEstimator::add(uint8_t satellite, const Vector& direction, double wavelength,
                            double phaseError, double rateError)
{
    constexpr double differences = 2; // each is of two measurements with the same noise
    const double sine = direction.z;
    const double noise = phaseNoise * wavelength;
    const std::array<double, 4> row = {-direction.x, -direction.y, -direction.z, 1};
    addRow(m_normal, m_phases, row, phaseError * wavelength,
           sine * sine / (differences * noise * noise));
    addRow(m_rateNormal, m_rates, row, rateError,
           sine * sine / (differences * Estimator::rangeRateNoise * Estimator::rangeRateNoise));
    ++m_baseline.satellites;
    if (sine > m_highest) {
        m_highest = sine;
        m_baseline.reference = satellite;
    }
}

void BaselineEstimator::solve(const Motion& truth)
{
    m_baseline.isKnown = m_baseline.satellites >= fewest;
    if (!m_baseline.isKnown)
        return;
    const Matrix<4> cofactors = inverse(m_normal);
    const std::array<double, 4> offset = product(cofactors, m_phases);
    const std::array<double, 4> rate = product(inverse(m_rateNormal), m_rates);
    m_baseline.vector = {truth.position + Vector{offset[0], offset[1], offset[2]},
                         truth.velocity + Vector{rate[0], rate[1], rate[2]}};
    for (size_t i = 0; i < 3; ++i) {
        for (size_t j = 0; j < 3; ++j)
            m_baseline.covariance[i][j] = cofactors[i][j];
    }
    findAngles();
}

/// Both angles and, by their derivatives with respect to the vector, how they move and scatter.
void BaselineEstimator::findAngles()
{
    const Vector& v = m_baseline.vector.position;
    const double level = std::hypot(v.x, v.y);
    const double whole = length(v);
    const double heading = std::atan2(v.x, v.y) * degrees;
    m_baseline.heading = heading < 0 ? heading + 360 : heading;
    m_baseline.pitch = std::atan2(v.z, level) * degrees;
    const Vector turn = Vector{v.y, -v.x, 0} * (degrees / (level * level));
    const Vector tilt =
        Vector{-v.x * v.z / level, -v.y * v.z / level, level} * (degrees / (whole * whole));
    m_baseline.headingRate = dot(turn, m_baseline.vector.velocity);
    m_baseline.pitchRate = dot(tilt, m_baseline.vector.velocity);
    const auto& c = m_baseline.covariance;
    const auto times = [&c](const Vector& d) {
        return Vector{c[0][0] * d.x + c[0][1] * d.y + c[0][2] * d.z,
                      c[1][0] * d.x + c[1][1] * d.y + c[1][2] * d.z,
                      c[2][0] * d.x + c[2][1] * d.y + c[2][2] * d.z};
    };
    m_baseline.headingVariance = dot(turn, times(turn));
    m_baseline.pitchVariance = dot(tilt, times(tilt));
    m_baseline.headingPitchCovariance = dot(turn, times(tilt));
}

} // namespace tqx::simulation
