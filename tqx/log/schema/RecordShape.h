#pragma once

#include "model/Errors.h"
#include "model/Model.h"
#include "tqx/log/schema/AddedTypes.h"

namespace tqx
{

/// Lays out the members of all records, and computes the sizes of records and the least bytes of an
/// entry. Records larger than is useful, and entries that may take no byte, are errors: a block of
/// a few bytes must not demand gigabytes.
void shapeRecords(const korcg::generator::Format& format, AddedTypes& types,
                  korcg::generator::Errors& errors);

} // namespace tqx
