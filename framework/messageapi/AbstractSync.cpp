#include "AbstractSync.h"

#include "FormatInfo.h"

#include <QMetaMethod>

namespace
{

QString nameOf(const FormatInfo* format)
{
    return format ? format->getName() : QStringLiteral("UNKNOWN");
}

} // namespace

AbstractSync::AbstractSync(QObject* parent) : QObject(parent) {}

AbstractSync::~AbstractSync() = default;

bool AbstractSync::hasEventReceiver() const
{
    static const QMetaMethod signal = QMetaMethod::fromSignal(&AbstractSync::newEvent);
    return isSignalConnected(signal);
}

void AbstractSync::reportDroppedBytes(const FormatInfo* format, unsigned int count)
{
    if (hasEventReceiver()) {
        newEvent(MessageApiEvent(
            MessageApiEvent::DecodingError,
            QStringLiteral("%1: %2 bytes dropped").arg(nameOf(format)).arg(count), format));
    }
}

void AbstractSync::reportCRCError(const FormatInfo* format)
{
    if (hasEventReceiver()) {
        newEvent(MessageApiEvent(MessageApiEvent::DecodingError,
                                 nameOf(format) + QStringLiteral("_ERR_INVALID_CRC"), format));
    }
}
