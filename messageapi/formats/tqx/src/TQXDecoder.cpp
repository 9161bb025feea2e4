#include "TQXDecoder.h"

#include "TQX_Format.h"
#include "TQX_FormatInfo.h"
#include "TQX_Getters.h"
#include "TQX_Layout.h"
#include "TQX_MessageFactory.h"
#include "TQX_OwnedRecord.h"
#include "TQX_RecordAccess.h"
#include "TQX_codec.h"

#include "MemLeakTracer.h"
#include "Message.h"

#include <QMetaMethod>

#include <algorithm>
#include <new>

using namespace Kor::MessageApi;

namespace
{

constexpr uint32_t longestBlock = 0xffff;

std::atomic<int> traceLevel{-1};

bool isEnum(int32_t messageEnum)
{
    return messageEnum >= 0 && messageEnum <= static_cast<int32_t>(TQX_lastRecordType);
}

// Sets the bits of all main block types, those without message class included, and no others.
void setMainTypes(TQX_Context_s& context, bool isEnabled)
{
    TQX_Context_s fresh;
    TQX_init_context(&fresh);
    for (uint32_t type = 1; type <= TQX_lastRecordType; ++type) {
        if (TQX_isEnabled(&fresh, type)) {
            TQX_enable(context, type, isEnabled);
        }
    }
}

const Message* createMessage(const void* record)
{
    try {
        return TQX_createMessage(record);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

bool hasMessageClass(uint32_t recordType)
{
    const TQX_TypeLayout* layout = TQX_layout(recordType);
    return layout == nullptr || layout->hasMessage;
}

} // namespace

TQXDecoder::TQXDecoder(QObject* parent)
    : AbstractDecoder(QStringLiteral("TQX"), parent), m_context{}
{
    MemLeakTracer::allocateObject("TQXDecoder");
    TQX_init_context(&m_context);
    TQX_resolveTrace(traceLevel, "TQXDecoder");
    for (const TQX_MessageType& type : TQX_messageTypes()) {
        setMessageEnum(type.info(), type.recordType);
    }
}

TQXDecoder::~TQXDecoder()
{
    MemLeakTracer::deallocateObject("TQXDecoder");
}

int32_t TQXDecoder::decodeMessage(const uint8_t* buffer, uint32_t maxlength)
{
    // On the stack, which is faster than an owning record.
    TQX_AnyRecord_u record;
    TQX_markEmpty(&record);

    const auto size = static_cast<uint16_t>(std::min(maxlength, longestBlock));
    const int32_t result = TQX_decode(&m_context, buffer, size, &record);
    if (result <= 0) {
        TQX_release(&record);
        publishFailure(result);
    } else if (const Message* message = createMessage(&record)) {
        publish(message);
    } else {
        const uint32_t recordType = record.head.korcg_type;
        TQX_release(&record);
        if (hasMessageClass(recordType)) {
            publishEvent(MessageApiEvent::InconsistentState,
                         QStringLiteral("TQX: Inconsistent decoder state"));
        }
    }
    return result;
}

void TQXDecoder::publish(const Message* message)
{
    message->addReference();
    newMessageEarly(message);
    newMessage(message);
    newMessageLate(message);
    message->removeReference();
}

void TQXDecoder::publishEvent(MessageApiEvent::Type type, const QString& text)
{
    newEvent(MessageApiEvent(type, text, TQX_FormatInfo::getInstance()));
}

// Texts are only built if anyone listens: a stream may hold nothing but disabled types.
void TQXDecoder::publishFailure(int32_t result)
{
    static const QMetaMethod eventSignal = QMetaMethod::fromSignal(&MessageSource::newEvent);
    static const QMetaMethod unknownSignal =
        QMetaMethod::fromSignal(&MessageSource::newUnknownMessage);

    // A receiver of the event may decode another block.
    const unsigned unknownNumber = m_context.lastUnknownBlockNumber;
    if (isSignalConnected(eventSignal)) {
        if (result == TQX_invalidMessage) {
            publishEvent(
                MessageApiEvent::UnknownMessage,
                QStringLiteral("TQX: Message type %1 unknown to PC software").arg(unknownNumber));
        } else {
            publishEvent(MessageApiEvent::DecodingError,
                         QStringLiteral("TQX: %1").arg(QLatin1String(TQX_errorName(result))));
        }
    }
    if (result == TQX_invalidMessage && isSignalConnected(unknownSignal)) {
        newUnknownMessage(TQX_FormatInfo::getInstance(),
                          QStringLiteral("Message type %1").arg(unknownNumber));
    }
}

void TQXDecoder::enableAllMessages()
{
    setMainTypes(m_context, true);
}

void TQXDecoder::disableAllMessages()
{
    setMainTypes(m_context, false);
}

void TQXDecoder::enableMessageEnum(int32_t messageEnum)
{
    if (isEnum(messageEnum)) {
        TQX_enable(m_context, static_cast<unsigned>(messageEnum), true);
    }
}

void TQXDecoder::disableMessageEnum(int32_t messageEnum)
{
    if (isEnum(messageEnum)) {
        TQX_enable(m_context, static_cast<unsigned>(messageEnum), false);
    }
}

bool TQXDecoder::isEnabledMessageEnum(int32_t messageEnum) const
{
    return isEnum(messageEnum) && TQX_isEnabled(&m_context, static_cast<unsigned>(messageEnum));
}
