#pragma once

#include "model/Errors.h"
#include "model/Model.h"

namespace korcg::generator
{

/// Looks through a linked, placed and numbered format for what people get wrong. Fields of types
/// that are marked as broken are passed over: their errors are reported already.
void check(const Format& format, Errors& errors);

} // namespace korcg::generator
