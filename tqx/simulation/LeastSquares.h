#pragma once

#include <array>
#include <cstddef>
#include <numeric>

namespace tqx::simulation
{

template<size_t size>
using Matrix = std::array<std::array<double, size>, size>;

/// The inverse of a symmetric positive definite matrix of which the lower half is given, by Gauss
/// and Jordan; pivots need no search.
template<size_t size>
Matrix<size> inverse(Matrix<size> m)
{
    for (size_t i = 0; i < size; ++i) {
        for (size_t j = 0; j < i; ++j)
            m[j][i] = m[i][j];
    }
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

} // namespace tqx::simulation
