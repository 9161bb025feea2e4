#pragma once

#include "tqx_log_export.h"

#include <cstdint>

namespace tqx
{

/// A number of a block or of a condition: an integer of either sign up to 64 bits, or a double.
/// Numbers compare by exact value, whatever their kinds.
class TQX_LOG_API Number
{
public:
    enum class Kind : uint8_t { Unsigned, Signed, Real };

    /// Zero.
    Number() : bits{0} {}
    static Number ofUnsigned(uint64_t value);
    static Number ofSigned(int64_t value);
    static Number ofReal(double value);

    bool isNaN() const;

    /// Rounded to the nearest double where it is not exact.
    double toDouble() const;

    /// Below 0, 0 or above 0 as this number is less than, equals or is more than the other; neither
    /// is a NaN.
    int compare(const Number& other) const;

private:
    Kind m_kind = Kind::Unsigned;
    union {
        uint64_t bits;
        int64_t whole;
        double real;
    };
};

} // namespace tqx
