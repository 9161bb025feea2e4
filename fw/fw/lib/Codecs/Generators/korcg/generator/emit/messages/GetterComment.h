#pragma once

#include "model/Model.h"

#include <string>

namespace korcg::generator
{

/// Comment lines ("    /// ...\n") above the getters of a field: meaning, unit, scale, values with
/// a meaning of their own, and when the field is there. Empty when there is none of these.
std::string getterComment(const Format& format, const RecordType& type, const Field& field);

/// Comment lines above a message class.
std::string classComment(const Format& format, const RecordType& type);

} // namespace korcg::generator
