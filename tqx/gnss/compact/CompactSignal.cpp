#include "tqx/gnss/compact/CompactSignal.h"

#include <cmath>

namespace tqx
{

namespace
{

constexpr double millisecondOfLight = 299792.458e3; // millimetres

/// Millimetres by which a range may differ from its extrapolation after `elapsed` seconds.
/// Satellites and vehicles do not accelerate by more than 2 m/s2 for long, and the mean of two
/// rates leaves only the change of acceleration; without a rate, the speed of both and the clock
/// drift count.
double uncertainty(double elapsed, bool hasRate, bool hasRateNow)
{
    if (hasRate && hasRateNow)
        return 100 * elapsed;
    if (hasRate || hasRateNow)
        return 1000 * elapsed * elapsed;
    return 1e6 * elapsed;
}

double expectedCode(const CompactSignal::Sample& before, const CompactSignal::Moment& moment,
                    int64_t jump)
{
    const double elapsed = moment.time - before.time;
    const double then = before.hasRate ? before.rate : moment.rate.value_or(0);
    const double rate = (then + moment.rate.value_or(then)) / 2;
    return static_cast<double>(before.code) + rate * elapsed * 1000 +
           static_cast<double>(jump) * millisecondOfLight;
}

} // namespace

int64_t residueOf(int64_t value, int64_t modulus)
{
    const int64_t rest = value % modulus;
    return rest < 0 ? rest + modulus : rest;
}

int64_t nearestTo(int64_t expected, int64_t residue, int64_t modulus)
{
    const int64_t above = residueOf(residue - expected, modulus);
    return expected + (2 * above < modulus ? above : above - modulus);
}

void CompactSignal::keep(const Sample& sample, bool isReference)
{
    m_last = sample;
    if (sample.carrier)
        m_carrier = sample.carrier;
    if (isReference)
        m_reference = sample;
}

void CompactSignal::loseLock()
{
    m_carrier.reset();
}

const CompactSignal::Sample* CompactSignal::referenceAt(double time) const
{
    constexpr double precision = 0.0005;
    return m_reference && std::fabs(m_reference->time - time) < precision ? &*m_reference : nullptr;
}

std::optional<int64_t> CompactSignal::completeCode(const Moment& moment, int64_t residue,
                                                   int64_t modulus) const
{
    struct Candidate {
        const Sample* sample;
        int64_t jump;
    };
    const Candidate candidates[] = {{referenceAt(moment.reference), moment.jump},
                                    {m_last ? &*m_last : nullptr, moment.jumpBefore}};
    for (const auto& [sample, jump] : candidates) {
        if (!sample || sample->time > moment.time)
            continue;
        const double doubt =
            uncertainty(moment.time - sample->time, sample->hasRate, moment.rate.has_value());
        if (doubt * 2 < static_cast<double>(modulus))
            return nearestTo(std::llround(expectedCode(*sample, moment, jump)), residue, modulus);
    }
    return std::nullopt;
}

std::optional<int64_t> CompactSignal::completeCarrier(int64_t residue, int64_t modulus) const
{
    if (!m_carrier)
        return std::nullopt;
    return nearestTo(*m_carrier, residue, modulus);
}

} // namespace tqx
