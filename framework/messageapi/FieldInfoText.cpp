#include "FieldInfo.h"
#include "FloatRepresentation.h"
#include "Message.h"

#include <QLocale>

#include <algorithm>
#include <cmath>

namespace
{

constexpr int defaultDecimals = 6;
constexpr int significantDigits = 7; // those of a 32-bit float

QString notAvailableText()
{
    return Message::useDoNotUseString ? Message::doNotUseString : QString();
}

/// As many hexadecimal digits as the width takes, so that bits keep their places.
QString bitMask(const FieldValue& value)
{
    const int digits = (value.getWidth() + 3) / 4;
    return QStringLiteral("0x%1").arg(value.getU64(), digits, 16, QLatin1Char('0'));
}

} // namespace

bool FieldInfo::hasWords(const FieldValue& value, QString* text) const
{
    // The do-not-use value of an integer usually has a name, which is more informative.
    if (value.isFloat() && isDoNotUse(value)) {
        *text = notAvailableText();
        return true;
    }
    if (const QString* name = findSymbolicValue(value)) {
        *text = *name;
        return true;
    }
    if (isDoNotUse(value)) {
        *text = notAvailableText();
        return true;
    }
    return false;
}

QString FieldInfo::storedNumber(const FieldValue& value) const
{
    const int decimals = m_precision >= 0 ? m_precision : defaultDecimals;
    switch (value.getKind()) {
    case FieldKind::U:
        return QLocale().toString(static_cast<qulonglong>(value.getU64()));
    case FieldKind::I:
        return QLocale().toString(static_cast<qlonglong>(value.getI64()));
    case FieldKind::F32:
        return FloatRepresentation::getString(value.getF32(), 'f', decimals, true);
    case FieldKind::F64:
        return FloatRepresentation::getString(value.getF64(), 'f', decimals, true);
    default:
        return value.toString();
    }
}

int FieldInfo::getShownDecimals() const
{
    const double step = std::fabs(m_scaleFactor);
    if (m_precision >= 0) {
        const bool isVisible = step * std::pow(10, m_precision) >= 0.5;
        return isVisible || !m_hasScaleFactor ? m_precision : -1;
    }
    if (!m_hasScaleFactor) {
        return defaultDecimals;
    }
    if (!(step > 0)) {
        return 0;
    }
    constexpr double mostDigits = 1e11;
    for (int decimals = 0;; ++decimals) {
        const double shifted = step * std::pow(10, decimals);
        if (!(shifted < mostDigits)) {
            break;
        }
        const double whole = std::round(shifted);
        if (whole >= 1 && std::fabs(shifted - whole) < 1e-12 * whole) {
            return decimals;
        }
    }
    // Not a finite decimal fraction, such as 1/3600: one step of the integer shows in three digits.
    return std::max(0, static_cast<int>(std::ceil(-std::log10(step))) + 2);
}

QString FieldInfo::scaledNumber(const FieldValue& value) const
{
    if (m_representationMode == FieldValue::BitMask && value.getKind() == FieldKind::U) {
        return bitMask(value);
    }
    const bool isNumber = value.isInteger() || value.isFloat();
    if (m_hasScaleFactor && isNumber) {
        const double number = value.toDouble() * m_scaleFactor;
        const int decimals = getShownDecimals();
        return decimals >= 0 ? FloatRepresentation::getString(number, 'f', decimals, true)
                             : FloatRepresentation::getString(number, 'g', significantDigits, true);
    }
    return storedNumber(value);
}

QString FieldInfo::toScaledString(const FieldValue& value) const
{
    QString words;
    return hasWords(value, &words) ? words : scaledNumber(value);
}

QString FieldInfo::getValueString(const Message* message) const
{
    const unsigned count = getNumberOfValues(message);
    const bool isText = m_type.getKind() == FieldKind::Ch;
    QString line;
    bool showsNumber = false;
    for (unsigned index = 0; index < count; ++index) {
        const FieldValue value = getValueUnchecked(message, index);
        if (isText && value.getCh() == '\0') {
            break;
        }
        if (index != 0 && !isText) {
            line += QLatin1Char(' ');
        }
        QString text;
        if (!hasWords(value, &text)) {
            text = scaledNumber(value);
            showsNumber = true;
        }
        line += text;
    }
    if (showsNumber && !m_unit.isEmpty()) {
        line += QLatin1Char(' ') + m_unit;
    }
    return line;
}

QString FieldInfo::getValueString(const Message* message, unsigned index, bool withUnit) const
{
    const FieldValue value = getValue(message, index);
    QString text;
    if (hasWords(value, &text)) {
        return text;
    }
    text = storedNumber(value);
    if (withUnit && !m_unit.isEmpty()) {
        text += QLatin1Char(' ') + m_unit;
    }
    return text;
}
