#pragma once

#include "TQX_codec.h"

#include <cstdint>
#include <ostream>
#include <vector>

namespace Kor::MessageApi
{

/// For tests that have a type as their parameter.
inline void PrintTo(const TQX_TypeLayout* type, std::ostream* stream)
{
    *stream << type->name;
}

} // namespace Kor::MessageApi

/// The role of a scalar field for others, which code that invents values for it has to know.
struct FieldRole {
    /// The field whose elements or entries it counts, or null; of several the largest.
    const Kor::MessageApi::TQX_FieldLayout* counted = nullptr;
    /// The sub-block field whose entry length it holds, or null; it may belong to a sub-block type.
    const Kor::MessageApi::TQX_FieldLayout* sized = nullptr;
    /// Values of parts of it that select content.
    struct Choice {
        uint64_t mask;
        uint64_t bits;
    };
    std::vector<Choice> choices;
};

const FieldRole& roleOf(const Kor::MessageApi::TQX_TypeLayout& type, int row);

/// Whether the field has bytes of its own on the wire.
inline bool isOnWire(const Kor::MessageApi::TQX_FieldLayout& field)
{
    return field.kind != Kor::MessageApi::TQX_FieldKind::Bits &&
           field.kind != Kor::MessageApi::TQX_FieldKind::Derived;
}

/// Whether the field holds sub-blocks.
inline bool holdsEntries(const Kor::MessageApi::TQX_FieldLayout& field)
{
    return field.type == Kor::MessageApi::TQX_MemberType::Record;
}

/// All layouts, ascending record type.
const std::vector<const Kor::MessageApi::TQX_TypeLayout*>& allTypes();

/// The layouts of main blocks, ascending record type.
const std::vector<const Kor::MessageApi::TQX_TypeLayout*>& mainTypes();

/// The type that holds entries of this sub-block type, null for a main block.
const Kor::MessageApi::TQX_TypeLayout* ownerOf(const Kor::MessageApi::TQX_TypeLayout& type);
