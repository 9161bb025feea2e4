#pragma once

#include "model/Model.h"

#include <string>

namespace korcg::generator
{

/// Initialisers of the TQX_FieldRow table of one type, one row per field.
std::string fieldRows(const RecordType& type);

/// Initialiser of the type's TQX_TypeRow; `rows` is the name of its field table.
std::string typeRow(const RecordType& type, const std::string& rows);

} // namespace korcg::generator
