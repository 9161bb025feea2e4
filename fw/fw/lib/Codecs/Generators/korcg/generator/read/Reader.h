#pragma once

#include "model/Errors.h"
#include "model/Ledger.h"
#include "model/Model.h"
#include "read/Source.h"

#include <vector>

namespace korcg::generator
{

/// Reads a description. Each YAML document of each source is either a list of record types or a map
/// of what the whole format shares. Names are resolved, nothing is numbered or checked yet; what
/// could not be read is reported and left out or marked as broken. `edition` and `ledger`: see
/// applyEdition().
Format readDescription(const std::vector<Source>& sources, int edition, Ledger& ledger,
                       Errors& errors);

/// Reads types that are added to a format. `format` has what they may name: units, scales, symbol
/// tables. Those of the description are added; its types and registration replace what was there.
Format readAddition(const std::vector<Source>& sources, Format format, Errors& errors);

} // namespace korcg::generator
