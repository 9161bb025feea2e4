#pragma once

#include "TQX_RecordAccess.h"
#include "tqx/log/record/Members.h"
#include "tqx/log/record/RecordPlan.h"

#include <cstdint>
#include <string_view>

namespace tqx
{

/// A member of a plan, prepared for reading from many records of the type that the plan is for.
/// Needs the plan during construction only.
class MemberReader
{
public:
    MemberReader(const RecordPlan& plan, const RecordPlan::Member& member)
        : m_kind(member.kind), m_isOptional(member.isOptional), m_size(member.size),
          m_offset(member.field->recordOffset), m_field(member.field), m_type(plan.type),
          m_inputs(member.facts->inputCount != 0 ? member.facts : nullptr),
          m_whole(member.facts->has(Kor::MessageApi::TQX_FieldFacts::Whole) ? member.facts
                                                                            : nullptr)
    {
    }

    RecordPlan::Kind getKind() const { return m_kind; }
    bool isNumber() const { return m_kind == RecordPlan::Kind::Number; }

    const Kor::MessageApi::TQX_FieldLayout& getField() const { return *m_field; }

    /// Whether the record carries the member.
    bool isPresent(const void* record) const
    {
        return !m_isOptional || TQX_isPresent(*m_type, *m_field, record);
    }

    /// Whether all inputs of a derived number are available. True for stored numbers.
    bool isAvailable(const void* record) const
    {
        return !m_inputs || TQX_hasInputs(*m_inputs, record);
    }

    /// The bits of a number, or of the whole word where bit ranges are packed in one.
    uint64_t getWord(const void* record) const
    {
        return loadWord(static_cast<const char*>(record) + m_offset, m_size);
    }

    /// The characters of a text, up to its first zero.
    std::string_view getText(const void* record) const { return textOf(*m_field, record); }

    /// Number of elements of an array or sub-blocks; 1 for an embedded one.
    uint32_t countElements(const void* record) const
    {
        return TQX_elementCount(*m_type, *m_field, record);
    }

    /// The first of the elements, and the distance between elements in bytes.
    const char* getElements(const void* record) const
    {
        return m_kind == RecordPlan::Kind::Blocks
                   ? static_cast<const char*>(TQX_element(*m_field, record))
                   : static_cast<const char*>(record) + m_offset;
    }
    uint32_t getStride() const { return m_size; }

    /// Whether the elements of an array are plain numbers, see isWholeValue().
    bool isWhole(const void* record) const
    {
        return m_whole &&
               isWholeValue(*m_whole, getElements(record), m_size, countElements(record));
    }

private:
    RecordPlan::Kind m_kind;
    bool m_isOptional;
    uint32_t m_size; ///< of an element in bytes
    uint32_t m_offset;
    const Kor::MessageApi::TQX_FieldLayout* m_field;
    const Kor::MessageApi::TQX_TypeLayout* m_type;
    const Kor::MessageApi::TQX_FieldFacts* m_inputs; ///< null when there are none
    const Kor::MessageApi::TQX_FieldFacts* m_whole;  ///< null when elements have their own values
};

} // namespace tqx
