#pragma once

#include "tqx/log/text/Buffer.h"

#include <cstdint>

/// Numbers in the shortest form that reads back to the same value.
namespace tqx::number
{

void appendUnsigned(Buffer& out, uint64_t value);
void appendSigned(Buffer& out, int64_t value);

/// At the width of the type; only finite values. A negative zero keeps its sign.
void appendFloat(Buffer& out, float value);
void appendDouble(Buffer& out, double value);

/// `digits` with the point moved to the left by `decimals`, without zeros at the end, as
/// appendDouble writes such a number of up to fifteen digits. False, and nothing written, for
/// numbers that are so small that it writes them with an exponent, and for more than 15 decimals.
bool appendDecimal(Buffer& out, bool isNegative, uint64_t digits, unsigned decimals);

} // namespace tqx::number
