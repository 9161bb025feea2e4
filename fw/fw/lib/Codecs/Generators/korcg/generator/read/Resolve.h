#pragma once

#include "model/Errors.h"
#include "read/Draft.h"

#include <vector>

namespace korcg::generator
{

/// Puts the header of main blocks in front, sub-fields after their packed fields, turns names of
/// fields into rows and fills in what the description leaves to be derived: roles, flags and the
/// like. Adds the types to `format`, ascending by record-type number.
void resolve(std::vector<TypeDraft> drafts, Format& format, Errors& errors);

} // namespace korcg::generator
