#include "FieldType.h"

QString FieldType::toString() const
{
    switch (m_kind) {
    case Kind::U:
        return QLatin1Char('u') + QString::number(m_width);
    case Kind::I:
        return QLatin1Char('i') + QString::number(m_width);
    case Kind::F32:
        return QStringLiteral("f32");
    case Kind::F64:
        return QStringLiteral("f64");
    case Kind::Ch:
        return QStringLiteral("ch");
    case Kind::SubMessage:
        return QStringLiteral("sub");
    case Kind::Empty:
        break;
    }
    return QString();
}
