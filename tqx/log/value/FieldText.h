#pragma once

#include "TQX_FieldFacts.h"
#include "TQX_Layout.h"
#include "tqx/log/record/MemberBits.h"
#include "tqx/log/text/Buffer.h"
#include "tqx/log/value/ValueNames.h"
#include "tqx/log/value/ValueStyle.h"
#include "tqx_log_export.h"

#include <cstdint>
#include <optional>
#include <string>

namespace tqx
{

/// How the values of one number or character field are written for people: as names, else scaled
/// and rounded to sensible decimals, or as stored. Texts are those of FieldInfo's getValueString in
/// the C locale.
class TQX_LOG_API FieldText
{
public:
    /// `isPacked`: values of a bit range are taken from the packed word, not from their own member.
    FieldText(const Kor::MessageApi::TQX_FieldLayout& layout,
              const Kor::MessageApi::TQX_FieldFacts& facts, bool isPacked, const ValueStyle& style);
    FieldText(const Kor::MessageApi::TQX_FieldLayout& layout,
              const Kor::MessageApi::TQX_FieldFacts& facts, bool isPacked, bool stored)
        : FieldText(layout, facts, isPacked, ValueStyle{stored})
    {
    }

    /// Appends the value in the bits of a member. Returns whether the unit belongs after it: it
    /// does after numbers, but not after names.
    bool append(Buffer& out, uint64_t word) const;

    /// Appends what is written for a value that is not available.
    static void appendNotAvailable(Buffer& out);

    /// The unit with a blank in front, or nothing.
    const std::string& getUnit() const { return m_unit; }

private:
    bool appendName(Buffer& out, uint64_t word) const;
    void appendStored(Buffer& out, uint64_t word) const;
    void appendNumber(Buffer& out, uint64_t word) const;
    double numberIn(uint64_t word) const;

    MemberBits m_bits;
    uint8_t m_width;
    bool m_isStored;
    bool m_isTime = false; ///< see isContinuousTime()
    bool m_isBitMask;
    double m_scale; ///< 0 for none
    int m_decimals; ///< negative when the number is written with significant digits instead
    ValueNames m_names;
    std::optional<double> m_doNotUse; ///< of a floating-point field
    std::string m_unit;
};

} // namespace tqx
