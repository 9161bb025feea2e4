#include "tqx/simulation/Estimator.h"

#include "tqx/simulation/LeastSquares.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace tqx::simulation
{

namespace
{

template<size_t size>
Covariance corner(const Matrix<size>& m)
{
    Covariance result = {};
    for (size_t i = 0; i < 4; ++i)
        std::copy_n(m[i].begin(), 4, result[i].begin());
    return result;
}

template<typename Equations, size_t size>
void addRow(Equations& equations, const std::array<double, size>& row, double error, double weight)
{
    for (size_t i = 0; i < size; ++i) {
        const double weighted = row[i] * weight;
        for (size_t j = 0; j <= i; ++j) // the rest is the same
            equations.normal[i][j] += weighted * row[j];
        equations.right[i] += weighted * error;
    }
    equations.squares += weight * error * error;
}

/// A measurement that the solution explains up to the residual. The detectable error is 4.13
/// deviations: one in a thousand false alarms, one in five missed.
template<size_t size>
Residual residualOf(const std::array<double, size>& row, double error, double weight,
                    const Matrix<size>& inverse, const std::array<double, size>& unknowns)
{
    constexpr double noncentrality = 4.13;
    const auto projected = product(inverse, row);
    const double explained = std::inner_product(row.begin(), row.end(), unknowns.begin(), 0.0);
    const double lost = std::inner_product(row.begin(), row.end(), projected.begin(), 0.0);
    const double deviation = std::sqrt(std::max(1 / weight - lost, 1e-12));
    return {error - explained, deviation, noncentrality / (weight * deviation)};
}

/// The part of a row that also applies to range rates: there is one drift for all systems.
template<size_t size>
std::array<double, 4> motionOf(const std::array<double, size>& row)
{
    return {row[0], row[1], row[2], row[3]};
}

} // namespace

unsigned Solution::usedSatellites() const
{
    return std::accumulate(used.begin(), used.end(), 0U);
}

void Estimator::begin()
{
    m_observations.clear();
    m_position = {};
    m_dilution = {};
    m_velocity = {};
    m_solution.used = {};
    // The clock of a system without satellites does not change.
    for (size_t i = 4; i < positionUnknowns; ++i)
        m_position.normal[i][i] = m_dilution.normal[i][i] = 1e-9;
}

void Estimator::add(System system, const Vector& direction, double codeError, double codeNoise,
                    double rateError)
{
    const double noise = codeNoise * std::sqrt(1 + reflectionShare * reflectionShare);
    const double sine = direction.z;
    std::array<double, positionUnknowns> row = {-direction.x, -direction.y, -direction.z, 1};
    if (system != System::Gps)
        row[3 + indexOf(system)] = 1;
    const double codeWeight = sine * sine / (noise * noise);
    const double rateWeight = sine * sine / (rangeRateNoise * rangeRateNoise);
    addRow(m_position, row, codeError, codeWeight);
    addRow(m_dilution, row, 0, 1);
    addRow(m_velocity, motionOf(row), rateError, rateWeight);
    m_observations.push_back({row, codeError, codeWeight, rateError, rateWeight});
    ++m_solution.used[indexOf(system)];
}

void Estimator::solve(const Truth& truth, const LocalFrame& frame)
{
    m_place.inverse = inverse(m_position.normal);
    m_speed.inverse = inverse(m_velocity.normal);
    m_place.unknowns = product(m_place.inverse, m_position.right);
    m_speed.unknowns = product(m_speed.inverse, m_velocity.right);
    const auto& x = m_place.unknowns;
    const auto& v = m_speed.unknowns;
    const Vector offset = {x[0], x[1], x[2]};
    const Vector speedOffset = {v[0], v[1], v[2]};
    m_solution.antenna = {truth.antenna.position + frame.toEarthFixed(offset),
                          truth.antenna.velocity + frame.toEarthFixed(speedOffset)};
    m_solution.position = toGeodetic(m_solution.antenna.position);
    m_solution.velocity = frame.toLocal(m_solution.antenna.velocity);
    m_solution.clockBias = truth.clockBias + x[3] / speedOfLight;
    m_solution.clockDrift = truth.clockDrift + v[3] / speedOfLight;
    m_solution.positionCovariance = corner(m_place.inverse);
    m_solution.velocityCovariance = corner(m_speed.inverse);
    m_solution.cofactors = corner(inverse(m_dilution.normal));
    for (size_t i = 1; i < systemCount; ++i) {
        m_solution.offsets[i] = x[3 + i];
        m_solution.offsetVariances[i] = m_place.inverse[3 + i][3 + i];
    }
    const auto systems = static_cast<unsigned>(std::count_if(
        m_solution.used.begin(), m_solution.used.end(), [](uint8_t n) { return n != 0; }));
    const unsigned satellites = m_solution.usedSatellites();
    m_solution.positionTest =
        m_position.squares - std::inner_product(x.begin(), x.end(), m_position.right.begin(), 0.0);
    m_solution.velocityTest =
        m_velocity.squares - std::inner_product(v.begin(), v.end(), m_velocity.right.begin(), 0.0);
    m_solution.positionRedundancy = satellites - std::min(satellites, 3 + systems);
    m_solution.velocityRedundancy = satellites - std::min(satellites, 4U);
}

Residual Estimator::codeResidual(size_t index) const
{
    const Observation& o = m_observations[index];
    return residualOf(o.row, o.codeError, o.codeWeight, m_place.inverse, m_place.unknowns);
}

Residual Estimator::rateResidual(size_t index) const
{
    const Observation& o = m_observations[index];
    return residualOf(motionOf(o.row), o.rateError, o.rateWeight, m_speed.inverse,
                      m_speed.unknowns);
}

} // namespace tqx::simulation
