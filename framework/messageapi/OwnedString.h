#pragma once

#include <QString>

#include <utility>

/// The same text in memory that outlives the library it came from: literals lie in that library's
/// data, so they are copied; texts on the heap are shared.
inline QString ownedString(QString text)
{
    const QStringData* data = text.data_ptr();
    const bool isRaw = data->offset != sizeof(QStringData);
    if (!isRaw && !data->ref.isStatic()) {
        return text;
    }
    if (text.isEmpty()) {
        return text.isNull() ? QString() : QString(QLatin1String(""));
    }
    return QString(text.constData(), text.size());
}
