#pragma once

#include "model/Model.h"

#include <string>
#include <string_view>

namespace korcg::generator
{

/// The functions that a message class has for a field.
enum class Getter {
    Presence,         ///< has<F>()
    Value,            ///< get<F>() of a plain field
    Element,          ///< get<F>(index) of a repeated field
    Count,            ///< getNumberOf<F>()
    Array,            ///< get<F>Array(), to be written
    ConstArray,       ///< get<F>Array(), to be read
    Vector,           ///< get<F>Vector() of a repeated field
    Block,            ///< get<F>(index) of a sub-block array, to be written
    ConstBlock,       ///< ... to be read
    BlockVector,      ///< get<F>Vector() of a sub-block array, to be written
    ConstBlockVector, ///< ... to be read
    Child,            ///< get<F>() of a sub-block inside the record, to be written
    ConstChild,       ///< ... to be read
};

/// Comment lines ("    /// ...\n") of one function of a field: what it returns, with meaning, unit,
/// range and named values, when the field is absent, and what is thrown. Never empty.
std::string getterComment(const Format& format, const RecordType& type, const Field& field,
                          Getter getter);

/// Comment lines that say what a message class is for, each after `mark`: "/// " or "// ".
std::string classComment(std::string_view mark, const Format& format, const RecordType& type);

} // namespace korcg::generator
