#pragma once

#include "TQX_FieldFacts.h"
#include "TQX_Layout.h"
#include "tqx/log/record/MemberBits.h"
#include "tqx/log/text/Buffer.h"
#include "tqx/log/value/Scale.h"
#include "tqx/log/value/ValueNames.h"
#include "tqx/log/value/ValueStyle.h"
#include "tqx_log_export.h"

#include <cstdint>
#include <optional>

namespace tqx
{

/// How the values of one number or character field are written, according to its facts. Immutable;
/// layout and facts live as long as the codec.
class TQX_LOG_API ShownValue
{
public:
    /// `isPacked`: values of a bit range are taken from the packed word, not from their own member.
    ShownValue(const Kor::MessageApi::TQX_FieldLayout& layout,
               const Kor::MessageApi::TQX_FieldFacts& facts, bool isPacked,
               const Notation& notation, const ValueStyle& style = {});

    /// Appends the value in the bits of a member: its name, the notation's word for "not
    /// available", or the number times its scale factor.
    void append(Buffer& out, uint64_t word) const;

    /// Appends the notation's word for "not available".
    void appendNotAvailable(Buffer& out) const { out.append(m_notation.notAvailable); }

private:
    void appendInteger(Buffer& out, uint64_t value) const;
    void appendReal(Buffer& out, uint64_t word) const;

    Notation m_notation;
    MemberBits m_bits;
    std::optional<Scale> m_scale;
    ValueNames m_names;
    std::optional<double> m_notAvailable; ///< of a floating-point field
    bool m_isTime = false;                ///< see isContinuousTime()
};

} // namespace tqx
