#pragma once

#include "tqx/log/text/Buffer.h"

namespace tqx
{

/// Appends a number with so many decimals, as QLocale::c() writes it in the format 'f': rounded by
/// its exact value, ties away from zero, with a sign even where a negative number becomes zero.
///
/// False, and nothing appended, where the plain way to round is not certain to give that: a number
/// so close to a tie that multiplying it by the power of ten may have brought it to the other side,
/// or one whose digits, the point left out, make `limit` or more. Numbers that are not finite are
/// among these, and so is everything with more than 22 decimals.
bool appendFixed(Buffer& out, double value, int decimals, double limit = 0x1p53);

} // namespace tqx
