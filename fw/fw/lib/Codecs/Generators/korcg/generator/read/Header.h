#pragma once

#include "model/Model.h"

#include <vector>

namespace korcg::generator
{

/// The ten header fields of a main block in field-list order.
std::vector<Field> headerFields(const Location& where);

} // namespace korcg::generator
