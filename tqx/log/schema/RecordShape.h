#pragma once

#include "model/Errors.h"
#include "model/Model.h"
#include "tqx/log/schema/AddedTypes.h"

namespace tqx
{

/// Places the members of all records, says how large these are and how few bytes an entry takes.
/// Records larger than is useful, and entries that may take no byte, are errors: a block of a few
/// bytes must not ask for gigabytes.
void shapeRecords(const korcg::generator::Format& format, AddedTypes& types,
                  korcg::generator::Errors& errors);

} // namespace tqx
