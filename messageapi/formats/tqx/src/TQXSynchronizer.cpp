#include "TQXSynchronizer.h"

#include "TQX_FormatInfo.h"
#include "TQX_Getters.h"

#include "MemLeakTracer.h"
#include "TqxSync.h"

#include <QMetaMethod>

namespace
{

std::atomic<int> traceLevel{-1};

template<typename Sync>
auto flushIfOffered(Sync* sync, int) -> decltype(sync->flush())
{
    sync->flush();
}

template<typename Sync>
void flushIfOffered(Sync*, long)
{
}

} // namespace

TQXSynchronizer::TQXSynchronizer() : AbstractSync(nullptr), m_sync(nullptr)
{
    MemLeakTracer::allocateObject("TQXSynchronizer");
    TQX_resolveTrace(traceLevel, "TQXSynchronizer");
    m_sync = new TqxSync(nullptr);
    connect(m_sync, &TqxSync::CRCError, this, &TQXSynchronizer::onCRCError);
    connect(m_sync, &TqxSync::droppedBytes, this, &TQXSynchronizer::onDroppedBytes);
    connect(m_sync, &TqxSync::invalidLength, this, &TQXSynchronizer::onInvalidLength);
}

TQXSynchronizer::~TQXSynchronizer()
{
    MemLeakTracer::deallocateObject("TQXSynchronizer");
    delete m_sync;
}

void TQXSynchronizer::appendBytes(QByteArray& bytes)
{
    m_sync->appendBytes(bytes);
}

bool TQXSynchronizer::hasBlock() const
{
    return m_sync->hasBlock();
}

QByteArray TQXSynchronizer::getBlockBytes()
{
    return m_sync->getBlockBytes();
}

int TQXSynchronizer::getNumberOfBytesLeft() const
{
    return m_sync->getNumberOfBytesLeft();
}

void TQXSynchronizer::flush()
{
    flushIfOffered(m_sync, 0);
}

void TQXSynchronizer::onCRCError()
{
    reportCRCError(TQX_FormatInfo::getInstance());
}

void TQXSynchronizer::onDroppedBytes(uint32_t nrBytes)
{
    reportDroppedBytes(TQX_FormatInfo::getInstance(), nrBytes);
}

void TQXSynchronizer::onInvalidLength()
{
    static const QMetaMethod eventSignal = QMetaMethod::fromSignal(&AbstractSync::newEvent);
    if (isSignalConnected(eventSignal)) {
        newEvent(MessageApiEvent(MessageApiEvent::DecodingError,
                                 QStringLiteral("TQX_ERR_INVALID_LENGTH"),
                                 TQX_FormatInfo::getInstance()));
    }
}
