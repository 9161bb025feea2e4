#include "FieldValue.h"

#include "MessageApiEvent.h"

#include <charconv>
#include <cmath>
#include <functional>
#include <type_traits>

static_assert(std::is_trivially_copyable_v<FieldValue> && sizeof(FieldValue) <= 16);

namespace
{

template<typename T>
int threeWay(T a, T b)
{
    return (a > b) - (a < b);
}

int compareFloats(double a, double b)
{
    if (std::isnan(a) || std::isnan(b)) {
        return threeWay(std::isnan(a), std::isnan(b));
    }
    return threeWay(a, b);
}

/// Exact, whereas converting the integer to double might round.
int compareUnsignedToFloat(uint64_t a, double b)
{
    if (std::isnan(b) || b >= 0x1p64) {
        return -1;
    }
    if (b < 0) {
        return 1;
    }
    const double whole = std::floor(b);
    const int order = threeWay(a, static_cast<uint64_t>(whole));
    return order != 0 ? order : (b > whole ? -1 : 0);
}

int compareSignedToFloat(int64_t a, double b)
{
    if (a >= 0) {
        return compareUnsignedToFloat(static_cast<uint64_t>(a), b);
    }
    if (std::isnan(b)) {
        return -1;
    }
    return -compareUnsignedToFloat(uint64_t{0} - static_cast<uint64_t>(a), -b);
}

/// The classes by which values are ordered first.
int rank(FieldKind kind)
{
    switch (kind) {
    case FieldKind::Empty:
        return 0;
    case FieldKind::U:
    case FieldKind::I:
    case FieldKind::F32:
    case FieldKind::F64:
        return 1;
    case FieldKind::Ch:
        return 2;
    case FieldKind::SubMessage:
        break;
    }
    return 3;
}

template<typename T>
QString shortest(T value)
{
    if (!std::isfinite(value)) {
        return QString::number(static_cast<double>(value));
    }
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, value).ptr;
    return QString::fromLatin1(text, static_cast<int>(end - text));
}

QString describe(const FieldValue& value)
{
    switch (value.getKind()) {
    case FieldKind::Empty:
        return QStringLiteral("an empty value");
    case FieldKind::Ch:
        return QStringLiteral("a character");
    case FieldKind::SubMessage:
        return QStringLiteral("a sub-message");
    default:
        return QStringLiteral("the value ") + value.toString();
    }
}

} // namespace

float FieldValue::getF32() const
{
    if (m_kind != Kind::F32) {
        throwMismatch(QStringLiteral("f32"));
    }
    return m_f32;
}

double FieldValue::getF64() const
{
    if (m_kind == Kind::F64) {
        return m_f64;
    }
    if (m_kind != Kind::F32) {
        throwMismatch(QStringLiteral("f64"));
    }
    return static_cast<double>(m_f32);
}

char FieldValue::getCh() const
{
    if (m_kind != Kind::Ch) {
        throwMismatch(QStringLiteral("ch"));
    }
    return m_ch;
}

const Message* FieldValue::getSubMessage() const
{
    if (m_kind != Kind::SubMessage) {
        throwMismatch(QStringLiteral("sub-message"));
    }
    return m_message;
}

double FieldValue::toDouble() const
{
    switch (m_kind) {
    case Kind::U:
        return static_cast<double>(m_u);
    case Kind::I:
        return static_cast<double>(m_i);
    case Kind::F32:
        return static_cast<double>(m_f32);
    case Kind::F64:
        return m_f64;
    default:
        throwMismatch(QStringLiteral("number"));
    }
}

QString FieldValue::toString() const
{
    switch (m_kind) {
    case Kind::U:
        return QString::number(static_cast<qulonglong>(m_u));
    case Kind::I:
        return QString::number(static_cast<qlonglong>(m_i));
    case Kind::F32:
        return shortest(m_f32);
    case Kind::F64:
        return shortest(m_f64);
    case Kind::Ch:
        return m_ch == '\0' ? QString() : QString(QLatin1Char(m_ch));
    case Kind::SubMessage:
        return QStringLiteral("submsg");
    case Kind::Empty:
        break;
    }
    return QString();
}

int FieldValue::compare(const FieldValue& other) const
{
    const int order = threeWay(rank(m_kind), rank(other.m_kind));
    if (order != 0) {
        return order;
    }
    switch (m_kind) {
    case Kind::Empty:
        return 0;
    case Kind::Ch:
        return threeWay(static_cast<unsigned char>(m_ch), static_cast<unsigned char>(other.m_ch));
    case Kind::SubMessage:
        return std::less<>()(other.m_message, m_message) -
               std::less<>()(m_message, other.m_message);
    case Kind::U:
        if (other.m_kind == Kind::U) {
            return threeWay(m_u, other.m_u);
        }
        if (other.m_kind == Kind::I) {
            return other.m_i < 0 ? 1 : threeWay(m_u, static_cast<uint64_t>(other.m_i));
        }
        return compareUnsignedToFloat(m_u, other.toDouble());
    case Kind::I:
        if (other.m_kind == Kind::I) {
            return threeWay(m_i, other.m_i);
        }
        if (other.m_kind == Kind::U) {
            return -other.compare(*this);
        }
        return compareSignedToFloat(m_i, other.toDouble());
    case Kind::F32:
    case Kind::F64:
        break;
    }
    return other.isInteger() ? -other.compare(*this) : compareFloats(toDouble(), other.toDouble());
}

uint64_t FieldValue::convertToUnsigned(uint64_t max) const
{
    if (m_kind == Kind::I && m_i >= 0 && static_cast<uint64_t>(m_i) <= max) {
        return static_cast<uint64_t>(m_i);
    }
    throwMismatch(QStringLiteral("unsigned integer up to %1").arg(max));
}

int64_t FieldValue::convertToSigned(int64_t max) const
{
    if (m_kind == Kind::U && m_u <= static_cast<uint64_t>(max)) {
        return static_cast<int64_t>(m_u);
    }
    throwMismatch(QStringLiteral("signed integer up to %1").arg(max));
}

void FieldValue::throwMismatch(const QString& wanted) const
{
    throw MessageApiEvent(MessageApiEvent::FieldAccess,
                          QStringLiteral("Reading %1 as %2.").arg(describe(*this), wanted),
                          nullptr);
}
