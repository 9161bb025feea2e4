#pragma once

#include "model/Model.h"

#include <string>
#include <string_view>

namespace korcg::generator
{

/// Comment lines ("    /// ...\n") above the getters of a field: meaning, unit, scale, values with
/// a meaning of their own, and when the field is there. Empty when there is none of these.
std::string getterComment(const Format& format, const RecordType& type, const Field& field);

/// Comment lines that say what a message class is for, each behind `mark`: "/// " or "// ".
std::string classComment(std::string_view mark, const Format& format, const RecordType& type);

} // namespace korcg::generator
