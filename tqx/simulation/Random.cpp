#include "tqx/simulation/Random.h"

namespace tqx::simulation
{

double Random::normal(double sigma)
{
    // Four numbers of 16 bits each: their sum has mean 131070 and this deviation.
    constexpr double deviation = 37837.22;
    const uint64_t bits = m_generator();
    const uint64_t sum = (bits & 0xffffU) + (bits >> 16U & 0xffffU) + (bits >> 32U & 0xffffU) +
                         (bits >> 48U & 0xffffU);
    return sigma / deviation * (static_cast<double>(sum) - 131070);
}

} // namespace tqx::simulation
