#pragma once

#include "model/Errors.h"
#include "model/Ledger.h"
#include "model/Model.h"
#include "read/Source.h"

#include <vector>

namespace korcg::generator
{

/// Which edition of a description is read.
struct Edition {
    int number = 0;           ///< what later ones added is left out; 0 for the latest
    Ledger* ledger = nullptr; ///< the numbers of editions after the first; without one they are
                              // /< assigned in the order of the description
};

/// Reads, links, numbers and checks a description. The result may be emitted only when `errors`
/// stays empty.
Format load(const std::vector<Source>& sources, Errors& errors, const Edition& edition = {});

/// Likewise, and checks that every earlier edition can be read, too, and that what it has keeps its
/// numbers, codes and places in the one after it.
Format loadWithHistory(const std::vector<Source>& sources, Errors& errors, const Edition& edition);

} // namespace korcg::generator
