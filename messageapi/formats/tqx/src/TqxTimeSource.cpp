#include "TqxTimeSource.h"

#include "TQXUtils.h"
#include "TQX_Getters.h"

#include "MemLeakTracer.h"
#include "Message.h"
#include "MessageInfo.h"

#include <QVariant>

namespace
{

std::atomic<int> traceLevel{-1};

// Whether the header time of messages of this type is the time of their content.
bool countsHeaderTime(const MessageInfo* info)
{
    const QVariant timestamp = info->getAttribute(QStringLiteral("timestamp"));
    if (timestamp.isNull()) {
        return false;
    }
    const QChar kind = timestamp.toChar();
    return kind == QLatin1Char('R') || kind == QLatin1Char('E');
}

} // namespace

TqxTimeSource::TqxTimeSource(QObject* parent) : TimeSource(parent)
{
    MemLeakTracer::allocateObject("TqxTimeSource");
    TQX_resolveTrace(traceLevel, "TqxTimeSource");
}

TqxTimeSource::~TqxTimeSource()
{
    MemLeakTracer::deallocateObject("TqxTimeSource");
}

uint64_t TqxTimeSource::getMillis(const Message* message)
{
    if (message == nullptr || !countsHeaderTime(message->getInfo())) {
        return getMillis();
    }
    const uint64_t millis = TQXUtils::getGNSSMillis(message);
    return millis == TQXUtils::invalidMillis ? 0 : millis;
}
