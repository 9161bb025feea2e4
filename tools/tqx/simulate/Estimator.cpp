#include "Estimator.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace tool
{

namespace
{

template<size_t size>
using Matrix = std::array<std::array<double, size>, size>;

/// The inverse of a symmetric positive definite matrix, by Gauss and Jordan; pivots need no search.
template<size_t size>
Matrix<size> inverse(Matrix<size> m)
{
    for (size_t k = 0; k < size; ++k) {
        const double pivot = 1 / m[k][k];
        m[k][k] = 1;
        for (size_t j = 0; j < size; ++j)
            m[k][j] *= pivot;
        for (size_t i = 0; i < size; ++i) {
            if (i == k)
                continue;
            const double factor = m[i][k];
            m[i][k] = 0;
            for (size_t j = 0; j < size; ++j)
                m[i][j] -= factor * m[k][j];
        }
    }
    return m;
}

template<size_t size>
std::array<double, size> product(const Matrix<size>& m, const std::array<double, size>& v)
{
    std::array<double, size> result = {};
    for (size_t i = 0; i < size; ++i)
        result[i] = std::inner_product(v.begin(), v.end(), m[i].begin(), 0.0);
    return result;
}

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
        for (size_t j = 0; j < size; ++j)
            equations.normal[i][j] += weighted * row[j];
        equations.right[i] += weighted * error;
    }
    equations.squares += weight * error * error;
}

} // namespace

unsigned Solution::usedSatellites() const
{
    return std::accumulate(used.begin(), used.end(), 0U);
}

void Estimator::begin()
{
    position = {};
    dilution = {};
    velocity = {};
    solution.used = {};
    // The clock of a system without satellites stays what it is.
    for (size_t i = 4; i < positionUnknowns; ++i)
        position.normal[i][i] = dilution.normal[i][i] = 1e-9;
}

void Estimator::add(System system, const Vector& direction, double codeError, double codeNoise,
                    double rateError)
{
    const double noise = codeNoise * std::sqrt(1 + reflectionShare * reflectionShare);
    const double sine = direction.z;
    std::array<double, positionUnknowns> row = {-direction.x, -direction.y, -direction.z, 1};
    if (system != System::Gps)
        row[3 + indexOf(system)] = 1;
    addRow(position, row, codeError, sine * sine / (noise * noise));
    addRow(dilution, row, 0, 1);
    addRow(velocity, std::array<double, 4>{row[0], row[1], row[2], 1}, rateError,
           sine * sine / (rangeRateNoise * rangeRateNoise));
    ++solution.used[indexOf(system)];
}

void Estimator::solve(const Truth& truth, const LocalFrame& frame)
{
    const auto inversePosition = inverse(position.normal);
    const auto inverseVelocity = inverse(velocity.normal);
    const auto place = product(inversePosition, position.right);
    const auto speed = product(inverseVelocity, velocity.right);
    const Vector offset = {place[0], place[1], place[2]};
    const Vector speedOffset = {speed[0], speed[1], speed[2]};
    solution.antenna = {truth.antenna.position + frame.toEarthFixed(offset),
                        truth.antenna.velocity + frame.toEarthFixed(speedOffset)};
    solution.position = toGeodetic(solution.antenna.position);
    solution.velocity = frame.toLocal(solution.antenna.velocity);
    solution.clockBias = truth.clockBias + place[3] / speedOfLight;
    solution.clockDrift = truth.clockDrift + speed[3] / speedOfLight;
    solution.positionCovariance = corner(inversePosition);
    solution.velocityCovariance = corner(inverseVelocity);
    solution.cofactors = corner(inverse(dilution.normal));
    const auto systems = static_cast<unsigned>(std::count_if(
        solution.used.begin(), solution.used.end(), [](uint8_t n) { return n != 0; }));
    const unsigned satellites = solution.usedSatellites();
    solution.positionTest = position.squares - std::inner_product(place.begin(), place.end(),
                                                                  position.right.begin(), 0.0);
    solution.velocityTest = velocity.squares - std::inner_product(speed.begin(), speed.end(),
                                                                  velocity.right.begin(), 0.0);
    solution.positionRedundancy = satellites - std::min(satellites, 3 + systems);
    solution.velocityRedundancy = satellites - std::min(satellites, 4U);
}

} // namespace tool
