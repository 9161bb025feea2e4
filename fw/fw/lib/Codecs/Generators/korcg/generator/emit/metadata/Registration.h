#pragma once

#include "emit/Emitters.h"

namespace korcg::generator
{

/// TQX_Registration.cpp: the order of the registry, and the rows by record-type number.
void emitRegistration(const Selection& types, Output& output);

} // namespace korcg::generator
