#pragma once

#include "tqx/log/text/Buffer.h"
#include "tqx_log_export.h"

namespace tqx
{

/// Appends a number with `decimals` decimals (0 or more), rounded by its exact value, ties away
/// from zero: 0.125 with two decimals is 0.13. A negative number that becomes zero keeps its sign;
/// what is not finite is "nan", "inf" or "-inf".
TQX_LOG_API void appendFixed(Buffer& out, double value, int decimals);

/// The same for a 32-bit number: the decimals of the shortest text that reads back to it, followed
/// by zeros.
TQX_LOG_API void appendFixed(Buffer& out, float value, int decimals);

/// Appends a number with `digits` significant digits (1 or more), rounded likewise, without
/// trailing zeros; with an exponent where the first digit is before the fourth decimal or the point
/// after the last digit: 0.0001234568, 1.234568e-05, 1.234568e+07.
TQX_LOG_API void appendSignificant(Buffer& out, double value, int digits);

} // namespace tqx
