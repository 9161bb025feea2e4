#pragma once

#include <cstdint>
#include <optional>

namespace tqx
{

/// The value nearest to `expected` that has this residue: value = residue + n * modulus. The
/// modulus is above 0. A tie goes to the smaller value.
int64_t nearestTo(int64_t expected, int64_t residue, int64_t modulus);

/// `value` modulo `modulus`, in 0 <= result < modulus, for negative values, too.
int64_t residueOf(int64_t value, int64_t modulus);

/// What is known about one signal of a satellite from earlier epochs, to complete the residues of
/// compact measurements. Ranges are whole millimetres, times are seconds on any scale that does not
/// run back.
class CompactSignal
{
public:
    /// A complete measurement.
    struct Sample {
        double time = 0;
        int64_t code = 0;               ///< code range
        double rate = 0;                ///< rate of the code range, metres per second
        bool hasRate = false;           ///< a Doppler was measured
        std::optional<int64_t> carrier; ///< carrier phase times wavelength, minus the code range
    };

    /// Time and rate at which a range to be completed was measured.
    struct Moment {
        double time;
        double reference;           ///< time of the reference epoch that its block names
        std::optional<double> rate; ///< metres per second, from the Doppler of that moment
        int64_t jump = 0; ///< milliseconds by which the clock was advanced since that reference
        int64_t jumpBefore = 0; ///< the same since the last epoch
    };

    /// Adds a complete measurement. That of a reference epoch is kept until the next one.
    void keep(const Sample& sample, bool isReference);

    /// The lock was lost: earlier carriers say nothing about later ones.
    void loseLock();

    /// The code range with this residue that is nearest to the one of the reference epoch (without
    /// that, of the last epoch), extrapolated by Doppler and elapsed time. Nothing without either,
    /// or where the extrapolation is too long to be unambiguous.
    std::optional<int64_t> completeCode(const Moment& moment, int64_t residue,
                                        int64_t modulus) const;

    /// Carrier minus code with this residue, nearest to that of the last epoch with a carrier of
    /// the same lock. Nothing without one.
    std::optional<int64_t> completeCarrier(int64_t residue, int64_t modulus) const;

    /// The measurement in the reference epoch at that time, if there was one.
    const Sample* referenceAt(double time) const;

private:
    std::optional<Sample> m_reference;
    std::optional<Sample> m_last;
    std::optional<int64_t> m_carrier; ///< the last one of this lock
};

} // namespace tqx
