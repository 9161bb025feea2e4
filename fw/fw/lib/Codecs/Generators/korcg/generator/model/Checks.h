#pragma once

#include "model/Errors.h"
#include "model/Model.h"

namespace korcg::generator
{

/// Looks through a linked, placed and numbered format for what people get wrong. Fields of types
/// that are marked as broken are passed over: their errors are reported already.
void check(const Format& format, Errors& errors);

/// Checks that everything of an edition has the same numbers, codes and places in the next one, and
/// that what this one adds to existing types is seen only by those who know it.
void checkGrowth(const Format& earlier, const Format& later, Errors& errors);

} // namespace korcg::generator
