#pragma once

#include "emit/Emitters.h"

#include <string>

namespace korcg::generator
{

/// Table of the getters of all message classes, for the generic test of these classes only.
std::string accessorsHeader();
std::string accessorsSource(const Selection& classes);

} // namespace korcg::generator
