#include "AbstractSync.h"

#include "FormatInfo.h"

namespace
{

QString nameOf(const FormatInfo* format)
{
    return format ? format->getName() : QStringLiteral("UNKNOWN");
}

} // namespace

AbstractSync::AbstractSync(QObject* parent) : QObject(parent) {}

AbstractSync::~AbstractSync() = default;

void AbstractSync::reportDroppedBytes(const FormatInfo* format, unsigned int count)
{
    newEvent(MessageApiEvent(MessageApiEvent::DecodingError,
                             QStringLiteral("%1: %2 bytes dropped").arg(nameOf(format)).arg(count),
                             format));
}

void AbstractSync::reportCRCError(const FormatInfo* format)
{
    newEvent(MessageApiEvent(MessageApiEvent::DecodingError,
                             nameOf(format) + QStringLiteral("_ERR_INVALID_CRC"), format));
}
