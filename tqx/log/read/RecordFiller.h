#pragma once

#include "TQX_RecordAccess.h"

#include <nlohmann/json.hpp>

namespace tqx
{

/// Fills an initialised record, main block or sub-block with its parent link set, from an object
/// of stored values by field name:
///
/// - fields that are left out keep their initial values;
/// - a packed word may be given by its named bit ranges instead, the others are then 0;
/// - counts follow from the arrays and texts that are given;
/// - entry lengths that are left out are what this system writes.
///
/// A derived value, an unknown name, a field that the block's revision or a selecting field
/// excludes, a value of the wrong type or out of range throws LineError. The record then still has
/// to be released.
void fillRecord(const Kor::MessageApi::TQX_TypeLayout& type, void* record,
                const nlohmann::json::object_t& values);

} // namespace tqx
