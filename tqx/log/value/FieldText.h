#pragma once

#include "TQX_Layout.h"
#include "tqx/log/record/MemberBits.h"
#include "tqx/log/text/Buffer.h"

#include <cstdint>
#include <string>
#include <vector>

class FieldInfo;
class FieldValue;

namespace tqx
{

/// How the values of one number or character field are written for people: as FieldInfo's
/// getValueString has them in the C locale, or as they are stored.
///
/// What a value is called is asked of the metadata; plain numbers are written without it, which is
/// many times as fast, wherever that is sure to give the same.
class FieldText
{
public:
    /// `isPacked`: values of a bit range are taken from the packed word, not from their own member.
    /// The metadata must outlive this.
    FieldText(const Kor::MessageApi::TQX_FieldLayout& layout, const FieldInfo& info, bool isPacked,
              bool isStored);

    /// Appends the value that stands in the bits of a member. Whether the unit belongs behind it,
    /// as it does behind numbers but not behind names.
    bool append(Buffer& out, uint64_t word) const;

    /// The unit with a blank in front, or nothing.
    const std::string& getUnit() const { return unit; }

private:
    FieldValue valueIn(uint64_t word) const;
    double numberIn(uint64_t word) const;
    bool isNamed(uint64_t word) const;
    void appendStored(Buffer& out, uint64_t word) const;
    bool appendPlain(Buffer& out, uint64_t word) const;

    const FieldInfo& info;
    MemberBits bits;
    uint8_t width;
    bool isStored;
    bool isTime = false; ///< see isContinuousTime()
    bool isWhole;        ///< whether numbers are integers without scale factor
    double scale;
    int decimals;
    double limit;              ///< of the digits that appendFixed() writes as the metadata does
    std::vector<double> names; ///< the values of a floating-point field that are words
    std::string unit;
};

} // namespace tqx
