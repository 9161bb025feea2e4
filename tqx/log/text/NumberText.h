#pragma once

#include "tqx/log/text/Buffer.h"
#include "tqx_log_export.h"

#include <cstdint>

/// Numbers in the shortest form that reads back to the same value.
namespace tqx::number
{

TQX_LOG_API void appendUnsigned(Buffer& out, uint64_t value);
TQX_LOG_API void appendSigned(Buffer& out, int64_t value);

/// At the precision of the type; only for finite values. A negative zero keeps its sign.
TQX_LOG_API void appendFloat(Buffer& out, float value);
TQX_LOG_API void appendDouble(Buffer& out, double value);

/// `digits` with the point moved to the left by `decimals`, without zeros at the end, as
/// appendDouble writes such a number of up to fifteen digits. False, and nothing written, for
/// numbers that are so small that it writes them with an exponent, and for more than 15 decimals.
TQX_LOG_API bool appendDecimal(Buffer& out, bool isNegative, uint64_t digits, unsigned decimals);

} // namespace tqx::number
