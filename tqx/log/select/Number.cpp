#include "tqx/log/select/Number.h"

#include <cmath>

namespace tqx
{

namespace
{

template<typename Value>
int order(Value a, Value b)
{
    return (a > b) - (a < b);
}

/// Exact, whereas converting the integer to double might round.
int compareUnsigned(uint64_t a, double b)
{
    if (b >= 0x1p64)
        return -1;
    if (b < 0)
        return 1;
    const double whole = std::floor(b);
    const int byWhole = order(a, static_cast<uint64_t>(whole));
    return byWhole != 0 ? byWhole : (b > whole ? -1 : 0);
}

int compareSigned(int64_t a, double b)
{
    return a >= 0 ? compareUnsigned(static_cast<uint64_t>(a), b)
                  : -compareUnsigned(0 - static_cast<uint64_t>(a), -b);
}

} // namespace

Number Number::ofUnsigned(uint64_t value)
{
    Number number;
    number.bits = value;
    return number;
}

Number Number::ofSigned(int64_t value)
{
    Number number;
    number.m_kind = Kind::Signed;
    number.whole = value;
    return number;
}

Number Number::ofReal(double value)
{
    Number number;
    number.m_kind = Kind::Real;
    number.real = value;
    return number;
}

bool Number::isNaN() const
{
    return m_kind == Kind::Real && std::isnan(real);
}

double Number::toDouble() const
{
    switch (m_kind) {
    case Kind::Unsigned:
        return static_cast<double>(bits);
    case Kind::Signed:
        return static_cast<double>(whole);
    case Kind::Real:
        break;
    }
    return real;
}

int Number::compare(const Number& other) const
{
    if (m_kind == other.m_kind) {
        return m_kind == Kind::Unsigned ? order(bits, other.bits)
               : m_kind == Kind::Signed ? order(whole, other.whole)
                                        : order(real, other.real);
    }
    if (m_kind == Kind::Real)
        return -other.compare(*this);
    if (other.m_kind == Kind::Real) {
        return m_kind == Kind::Unsigned ? compareUnsigned(bits, other.real)
                                        : compareSigned(whole, other.real);
    }
    if (m_kind == Kind::Signed)
        return whole < 0 ? -1 : order(static_cast<uint64_t>(whole), other.bits);
    return -other.compare(*this);
}

} // namespace tqx
