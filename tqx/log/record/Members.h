#pragma once

#include "TQX_FieldFacts.h"
#include "TQX_Format.h"
#include "TQX_Layout.h"
#include "TQX_RecordAccess.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

/// Members of records as the writers of values see them.
namespace tqx
{

/// Whether a member is one number, in which bit ranges may be packed.
inline bool isNumber(const Kor::MessageApi::TQX_FieldLayout& field)
{
    using Kind = Kor::MessageApi::TQX_FieldKind;
    return field.kind == Kind::Value || (field.kind == Kind::Derived && field.elements == 1);
}

/// Whether a field is a bit range of such a number. Bits of the elements of an array are kept in
/// arrays of their own, and summaries of other bits in a member.
inline bool isPartOfNumber(const Kor::MessageApi::TQX_TypeLayout& type,
                           const Kor::MessageApi::TQX_FieldLayout& field)
{
    return field.kind == Kor::MessageApi::TQX_FieldKind::Bits &&
           field.summary == Kor::MessageApi::TQX_Summary::None &&
           isNumber(type.fields[field.parent]);
}

inline bool isText(const Kor::MessageApi::TQX_FieldLayout& field)
{
    using Kind = Kor::MessageApi::TQX_FieldKind;
    return field.kind == Kind::Text || field.kind == Kind::CountedText;
}

/// The characters of a text, up to its first zero.
inline std::string_view textOf(const Kor::MessageApi::TQX_FieldLayout& field, const void* record)
{
    const auto* text = static_cast<const char*>(TQX_element(field, record));
    const void* zero = std::memchr(text, 0, field.elements);
    return {text,
            zero ? static_cast<size_t>(static_cast<const char*>(zero) - text) : field.elements};
}

/// Whether a field is the time that continues across the ends of weeks. It has no code for "not
/// available"; all ones mean that the block has no time.
inline bool isContinuousTime(const Kor::MessageApi::TQX_FieldLayout& field)
{
    return field.kind == Kor::MessageApi::TQX_FieldKind::Derived &&
           field.recordOffset == offsetof(Kor::MessageApi::TQX_MainHeader_s, TOWc) &&
           std::string_view(field.name) == "TOWc";
}
constexpr uint64_t noContinuousTime = Kor::MessageApi::TQX_noTOW;

/// The bits of an element of `size` bytes.
inline uint64_t loadWord(const void* element, uint32_t size)
{
    const auto as = [element](auto value) {
        std::memcpy(&value, element, sizeof value);
        return uint64_t{value};
    };
    switch (size) {
    case 1:
        return as(uint8_t{});
    case 2:
        return as(uint16_t{});
    case 4:
        return as(uint32_t{});
    default:
        return as(uint64_t{});
    }
}

/// Whether the elements of an array are one value (TQX_FieldFacts::Whole) that is available: each
/// of them is then a number, the one that means "not available" elsewhere included.
inline bool isWholeValue(const Kor::MessageApi::TQX_FieldFacts& facts, const void* elements,
                         uint32_t size, uint32_t count)
{
    if (!facts.has(Kor::MessageApi::TQX_FieldFacts::Whole))
        return false;
    const uint64_t none = TQX_doNotUse(facts);
    const auto* element = static_cast<const char*>(elements);
    for (uint32_t i = 0; i < count; ++i, element += size) {
        if (loadWord(element, size) != none)
            return true;
    }
    return false;
}

} // namespace tqx
