#pragma once

#include <QString>
#include <QStringList>

#include <ostream>

// Found by GoogleTest through the types' namespace, which is the global one.
inline void PrintTo(const QString& text, std::ostream* stream)
{
    *stream << '"' << text.toStdString() << '"';
}

inline void PrintTo(const QStringList& texts, std::ostream* stream)
{
    *stream << '[' << texts.join(QStringLiteral(" | ")).toStdString() << ']';
}
