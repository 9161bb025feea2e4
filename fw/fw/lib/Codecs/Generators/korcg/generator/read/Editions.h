#pragma once

#include "model/Errors.h"
#include "model/Ledger.h"
#include "model/Model.h"
#include "read/Draft.h"

#include <vector>

namespace korcg::generator
{

/// Gives every type, field, bit and named value its edition, leaves out those after `edition` (0
/// for none), and numbers the types of editions after the first by the ledger. Sets the editions
/// and the last record type of the first edition in `format`.
void applyEdition(std::vector<TypeDraft>& drafts, Format& format, int edition, Ledger& ledger,
                  Errors& errors);

} // namespace korcg::generator
