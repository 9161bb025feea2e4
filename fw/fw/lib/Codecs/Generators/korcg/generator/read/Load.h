#pragma once

#include "model/Errors.h"
#include "model/Model.h"
#include "read/Source.h"

#include <vector>

namespace korcg::generator
{

/// Reads, links, numbers and checks a description. The result may be emitted only when `errors`
/// stays empty.
Format load(const std::vector<Source>& sources, Errors& errors);

} // namespace korcg::generator
