#include "FloatRepresentation.h"

#include <QLocale>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string_view>

namespace
{

bool isFormat(char format, char lower)
{
    return (format | 0x20) == lower;
}

QString render(double value, char format, int precision, bool display)
{
    const int decimals = precision < 0 ? int(QLocale::FloatingPointShortest) : precision;
    return display ? QLocale().toString(value, format, decimals)
                   : QString::number(value, format, decimals);
}

/// Decimals ('f', 'e') or significant digits ('g') of the shortest text of a float.
int ownDigits(float value, char format)
{
    char text[64];
    const bool fixed = isFormat(format, 'f');
    const auto end = std::to_chars(text, text + sizeof text, value,
                                   fixed ? std::chars_format::fixed : std::chars_format::scientific)
                         .ptr;
    const std::string_view digits(text, static_cast<size_t>(end - text));
    const size_t point = digits.find('.');
    const size_t stop = std::min(digits.find('e'), digits.size());
    const int decimals = point == std::string_view::npos ? 0 : static_cast<int>(stop - point - 1);
    return isFormat(format, 'g') ? decimals + 1 : decimals;
}

} // namespace

QString FloatRepresentation::getString(double value, char format, int precision, bool display)
{
    return render(value, format, precision, display);
}

QString FloatRepresentation::getString(float value, char format, int precision, bool display)
{
    const auto wide = static_cast<double>(value);
    if (!std::isfinite(value)) {
        return render(wide, format, precision, display);
    }
    const int own = ownDigits(value, format);
    if (precision < 0 || (precision > own && isFormat(format, 'g'))) {
        return render(wide, format, own, display);
    }
    if (precision <= own) {
        return render(wide, format, precision, display);
    }
    // At least one decimal, so that the zeros follow a decimal point.
    const int shown = std::max(own, 1);
    QString text = render(wide, format, shown, display);
    const QLocale locale = display ? QLocale() : QLocale::c();
    const int exponent = isFormat(format, 'e')
                             ? text.indexOf(locale.exponential(), 0, Qt::CaseInsensitive)
                             : text.size();
    text.insert(exponent, QString(precision - shown, locale.zeroDigit()));
    return text;
}
