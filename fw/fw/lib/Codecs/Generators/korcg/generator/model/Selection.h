#pragma once

#include "model/Errors.h"
#include "model/Model.h"

#include <string>
#include <vector>

namespace korcg::generator
{

/// The types with these names and all sub-blocks that they hold, ascending record-type number; all
/// types of the format when `names` is empty. An unknown name is an error.
std::vector<const RecordType*> select(const Format& format, const std::vector<std::string>& names,
                                      Errors& errors);

} // namespace korcg::generator
