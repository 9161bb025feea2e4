#pragma once

#include "TQX_DescribedType.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace Kor::MessageApi
{

/// The most arguments that a formula has.
constexpr unsigned mostArguments = 5;

/// A number passed to or from a formula without loss.
class Argument
{
public:
    static Argument ofReal(double value)
    {
        Argument argument;
        argument.m_real = value;
        argument.m_kind = Kind::Real;
        return argument;
    }
    /// `bits` are those of the sign-extended number.
    static Argument ofWhole(uint64_t bits, bool isSigned)
    {
        Argument argument;
        argument.m_bits = bits;
        argument.m_kind = isSigned ? Kind::Signed : Kind::Unsigned;
        return argument;
    }

    /// As a parameter of that type. Real numbers that an integer cannot hold become 0.
    template<typename Number>
    Number as() const
    {
        if constexpr (std::is_floating_point_v<Number>) {
            if (m_kind == Kind::Real)
                return static_cast<Number>(m_real);
            return m_kind == Kind::Signed ? static_cast<Number>(static_cast<int64_t>(m_bits))
                                          : static_cast<Number>(m_bits);
        } else {
            return static_cast<Number>(asBits());
        }
    }

    uint64_t asBits() const
    {
        if (m_kind != Kind::Real)
            return m_bits;
        constexpr double limit = 9223372036854775808.0; // 2^63
        if (!(m_real >= -limit && m_real < 2 * limit))
            return 0;
        return m_real < limit ? static_cast<uint64_t>(static_cast<int64_t>(m_real))
                              : static_cast<uint64_t>(m_real);
    }

private:
    enum class Kind : uint8_t { Real, Signed, Unsigned };

    double m_real = 0;
    uint64_t m_bits = 0;
    Kind m_kind = Kind::Unsigned;
};

/// A formula by its name, for types without generated code.
struct TQX_Formula {
    const char* name;
    unsigned arguments;
    Argument (*compute)(const Argument* arguments);
};

} // namespace Kor::MessageApi
