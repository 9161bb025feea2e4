#pragma once

#include "messageapi_export.h"

#include <QString>

/// Text of floating-point numbers.
class MESSAGEAPI_API FloatRepresentation
{
public:
    /// `format` is 'e', 'f' or 'g' or their capitals, as in printf; `precision` is the number of
    /// decimals, for 'g' of significant digits. A negative precision gives the shortest text that
    /// reads back to the same value. With `display` the text follows the default QLocale, for
    /// people; without it is plain C form with a point, for programs. Both round alike, ties away
    /// from zero. Values that are not finite are "nan", "inf" and "-inf" in plain form.
    static QString getString(double value, char format, int precision, bool display);

    /// Likewise, with the float's own digits: decimals beyond those that distinguish it from its
    /// neighbours are zeros, not the digits that appear when it is widened to double. 0.1f with 12
    /// decimals is "0.100000000000".
    static QString getString(float value, char format, int precision, bool display);

    FloatRepresentation() = delete;
};
