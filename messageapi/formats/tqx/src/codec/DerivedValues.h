#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

/// Formulas of the values that decoders compute from wire fields. The description names them;
/// arguments are record members in the order that it lists.
namespace Kor::MessageApi::Derived
{

/// Speed of light in vacuum, metres per second (the value of the GNSS interface documents).
constexpr double speedOfLight = 299792458.0;

/// Signal number of a measurement. Index 31 means that the number continues in `slot`.
constexpr uint8_t signalNumber(uint8_t index, uint8_t slot)
{
    return static_cast<uint8_t>(index == 31 ? 32 + slot : index);
}

/// Carrier of a signal.
struct Carrier {
    double frequency;  ///< hertz
    double wavelength; ///< metres, infinite for frequency 0
};

constexpr std::size_t signalNumbers = 64;
constexpr std::size_t frequencySlots = 32;

/// Carriers by signal number, then those of the L1 and of the L2 FDMA signals by frequency slot.
extern const std::array<Carrier, signalNumbers + 2 * frequencySlots> carriers;

/// Carrier of a signal number. GLONASS FDMA signals (8 to 11) use their frequency slot, which is
/// the channel number plus 8 (GLONASS ICD L1, L2: 562.5 kHz and 437.5 kHz channel spacing).
inline const Carrier& carrierOf(uint8_t signal, uint8_t slot)
{
    const unsigned fdma = signal - 8U;
    const std::size_t bySlot = signalNumbers + fdma / 2 * frequencySlots + slot % frequencySlots;
    return carriers[fdma < 4U ? bySlot : signal % signalNumbers];
}

/// Carrier frequency in hertz, 0 when the signal is unknown and -2e10 for the number that is set
/// aside.
inline double carrierFrequency(uint8_t signal, uint8_t slot)
{
    return carrierOf(signal, slot).frequency;
}

/// Wavelength of the carrier in metres, infinite when the signal is unknown.
inline double carrierWavelength(uint8_t signal, uint8_t slot)
{
    return carrierOf(signal, slot).wavelength;
}

/// C/N0 in dB-Hz; the P(Y) signals 1 and 2 have no offset.
inline double carrierToNoise(uint8_t cn0, uint8_t signal)
{
    return (cn0 + (signal == 1 || signal == 2 ? 0 : 40)) * 0.25;
}

/// Doppler in hertz.
inline double dopplerHertz(int32_t doppler)
{
    return doppler * 0.0001;
}

/// A difference whose lowest 16 bits are sent apart from the bits above. The sum is formed before
/// it becomes a double: that is exact and takes one conversion.
constexpr int32_t joinOffset(int8_t msb, uint16_t lsb)
{
    return msb * 65536 + lsb;
}

/// Pseudo-range in metres from its millimetre count.
inline double codeRange(uint8_t msb, uint32_t lsb)
{
    return static_cast<double>(int64_t{msb} << 32U | lsb) * 0.001;
}

/// Carrier phase in cycles: the pseudo-range in cycles plus the difference that is sent.
inline double carrierPhase(double range, double lambda, int8_t msb, uint16_t lsb)
{
    return range / lambda + joinOffset(msb, lsb) * 0.001;
}

/// Pseudo-range of a further signal in metres, relative to the first signal's.
inline double codeRangeOffset(double firstRange, int8_t msb, uint16_t lsb)
{
    return firstRange + joinOffset(msb, lsb) * 0.001;
}

/// Doppler of a further signal in hertz: the first signal's, scaled by the carrier frequencies,
/// plus the difference that is sent.
inline double dopplerOffsetHertz(double firstDoppler, double firstFrequency, double frequency,
                                 int8_t msb, uint16_t lsb)
{
    return firstDoppler * (frequency / firstFrequency) + joinOffset(msb, lsb) * 0.0001;
}

/// The value of float fields that are not available.
constexpr double notAvailable = -2e10;

/// Square root of a variance, "not available" when the variance is that or negative.
inline double standardDeviation(double variance)
{
    return variance < 0 ? notAvailable : std::sqrt(variance);
}

/// Horizontal accuracy at 95 percent: twice the root of the sum of two variances (2DRMS).
inline double horizontalAccuracy(double varianceA, double varianceB)
{
    return varianceA < 0 || varianceB < 0 ? notAvailable : 2 * std::sqrt(varianceA + varianceB);
}

/// Vertical accuracy at 95 percent: twice the standard deviation.
inline double verticalAccuracy(double variance)
{
    return variance < 0 ? notAvailable : 2 * std::sqrt(variance);
}

/// Root of the sum of three variances (the mean radial spherical error).
inline double spatialDeviation(double varianceX, double varianceY, double varianceZ)
{
    return varianceX < 0 || varianceY < 0 || varianceZ < 0
               ? notAvailable
               : std::sqrt(varianceX + varianceY + varianceZ);
}

/// Spatial accuracy at 95 percent: twice the root of the sum of three variances.
inline double spatialAccuracy(double varianceX, double varianceY, double varianceZ)
{
    const double deviation = spatialDeviation(varianceX, varianceY, varianceZ);
    return deviation == notAvailable ? notAvailable : 2 * deviation;
}

/// Whether a component of a vector has a value.
inline bool isAvailable(double component)
{
    return component != notAvailable && !std::isnan(component);
}

/// Length of a vector in the plane, "not available" when a component is that or NaN.
inline double length2(double x, double y)
{
    return isAvailable(x) && isAvailable(y) ? std::hypot(x, y) : notAvailable;
}

/// Length of a vector in space, "not available" when a component is that or NaN.
inline double length3(double x, double y, double z)
{
    return isAvailable(x) && isAvailable(y) && isAvailable(z) ? std::hypot(x, y, z) : notAvailable;
}

/// A count whose lowest 32 bits are sent apart from the bits above.
constexpr uint64_t joinWords(uint32_t msb, uint32_t lsb)
{
    return uint64_t{msb} << 32U | lsb;
}

/// Number of complete 32-bit words in a payload that is counted in bytes.
constexpr uint32_t wordCount(uint32_t bytes)
{
    return bytes / 4U;
}

} // namespace Kor::MessageApi::Derived
