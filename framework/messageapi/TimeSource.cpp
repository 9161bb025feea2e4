#include "TimeSource.h"

TimeSource::TimeSource(QObject* parent) : QObject(parent) {}

TimeSource::~TimeSource() = default;

QDateTime TimeSource::getTime()
{
    return QDateTime::currentDateTimeUtc();
}

bool TimeSource::hasValidMillis()
{
    return true;
}

uint64_t TimeSource::getMillis(const Message*)
{
    return getMillis();
}

uint64_t TimeSource::getMillis()
{
    return static_cast<uint64_t>(getTime().toMSecsSinceEpoch());
}

QString TimeSource::millisToString(uint64_t millis)
{
    return QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(millis), Qt::UTC)
        .toString(Qt::ISODateWithMs);
}
