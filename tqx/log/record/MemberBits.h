#pragma once

#include "TQX_Layout.h"
#include "TQX_RecordAccess.h"

#include <cstdint>
#include <cstring>

namespace tqx
{

/// Extracts the values of a number or character field from the bits of its member. Immutable; the
/// layout is needed during construction only.
class MemberBits
{
public:
    /// `isPacked`: values of a bit range are taken from the packed word, not from their own member.
    MemberBits(const Kor::MessageApi::TQX_FieldLayout& layout, bool isPacked)
        : m_memberType(layout.type), m_hasSign(TQX_isSigned(layout)),
          m_width(isPacked ? layout.width : 8 * TQX_elementSize(layout)),
          m_shift(isPacked ? layout.shift : 0)
    {
    }

    bool isSingle() const { return m_memberType == Kor::MessageApi::TQX_MemberType::F32; }
    bool isReal() const
    {
        return isSingle() || m_memberType == Kor::MessageApi::TQX_MemberType::F64;
    }
    bool isCharacter() const { return m_memberType == Kor::MessageApi::TQX_MemberType::Char; }
    bool isSigned() const { return m_hasSign; }

    /// Value of an integer field, sign-extended when it is signed.
    uint64_t integer(uint64_t word) const
    {
        const uint64_t value = word >> m_shift & ~uint64_t{0} >> (64 - m_width);
        if (!m_hasSign)
            return value;
        const uint64_t sign = uint64_t{1} << (m_width - 1);
        return (value ^ sign) - sign;
    }

    /// Value of a 32-bit floating-point field.
    static float single(uint64_t word)
    {
        const auto bits = static_cast<uint32_t>(word);
        float value = 0;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    }

    /// Value of any floating-point field.
    double real(uint64_t word) const
    {
        if (isSingle())
            return static_cast<double>(single(word));
        double value = 0;
        std::memcpy(&value, &word, sizeof value);
        return value;
    }

private:
    Kor::MessageApi::TQX_MemberType m_memberType;
    bool m_hasSign;
    unsigned m_width;
    unsigned m_shift;
};

} // namespace tqx
