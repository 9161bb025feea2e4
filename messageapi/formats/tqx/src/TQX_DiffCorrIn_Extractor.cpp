#include "TQX_DiffCorrIn_Extractor.h"

#include "TQX_DiffCorrIn_Message.h"
#include "TQX_Getters.h"
#include "TQX_codec.h"

#include "AbstractDecoder.h"
#include "FieldInfo.h"
#include "MemLeakTracer.h"
#include "MessageApiEvent.h"
#include "MessageSource.h"
#include "PathExpression.h"

#include <algorithm>

namespace
{

using Record = Kor::MessageApi::TQX_DiffCorrIn_s;

std::atomic<int> traceLevel{-1};

struct Payload {
    const void* bytes;
    size_t capacity;
};

Payload payloadOf(const TQX_DiffCorrIn_Message& message, uint8_t mode)
{
    switch (mode) {
    case 0:
        return {message.getRTCM2WordsArray(), sizeof(Record::RTCM2Words)};
    case 1:
        return {message.getCMRMessageArray(), sizeof(Record::CMRMessage)};
    case 2:
        return {message.getRTCM3MessageArray(), sizeof(Record::RTCM3Message)};
    case 3:
        return {message.getRTCMVMessageArray(), sizeof(Record::RTCMVMessage)};
    default:
        dbg_Assert("MessageAPI_TQX", "TQX_DiffCorrIn_Extractor",
                   "TQX_DiffCorrIn_Extractor::processNewMessage",
                   "..\\messageapi\\formats\\tqx\\src\\TQX_DiffCorrIn_Extractor", 92,
                   "Unsupported DiffCorrIn Mode value");
        return {nullptr, 0};
    }
}

} // namespace

TQX_DiffCorrIn_Extractor::TQX_DiffCorrIn_Extractor(MessageSource* source, AbstractDecoder* target,
                                                   unsigned char mode, QObject* parent)
    : QObject(parent), m_mode(mode), m_target(target), m_modeField(nullptr)
{
    MemLeakTracer::allocateObject("TQX_DiffCorrIn_Extractor");
    TQX_resolveTrace(traceLevel, "TQX_DiffCorrIn_Extractor");
    connect(source, &MessageSource::newMessageLate, this,
            &TQX_DiffCorrIn_Extractor::processNewMessage);
    try {
        m_modeField = PathExpression::getUniqueFieldInfo(QStringLiteral("TQX:DiffCorrIn:Mode"));
    } catch (const MessageApiEvent&) {
        qFatal("TQX_DiffCorrIn_Extractor: TQX format info not yet initialized. "
               "Extractor will not work.");
    }
}

TQX_DiffCorrIn_Extractor::~TQX_DiffCorrIn_Extractor()
{
    MemLeakTracer::deallocateObject("TQX_DiffCorrIn_Extractor");
}

void TQX_DiffCorrIn_Extractor::processNewMessage(const Message* message)
{
    if (m_modeField == nullptr || !m_modeField->hasValue(message) ||
        m_modeField->getValueUnchecked(message, 0).getU8() != m_mode) {
        return;
    }
    const auto& corrections = static_cast<const TQX_DiffCorrIn_Message&>(*message);
    const Payload payload = payloadOf(corrections, m_mode);
    // RTCM 2 comes in words; a length that is no multiple of theirs could point behind the last.
    const size_t size = std::min<size_t>(corrections.getData_Byte_Length(), payload.capacity);
    m_payload = QByteArray(static_cast<const char*>(payload.bytes), static_cast<int>(size));
    preprocessRawData();
    m_target->decodeMessage(reinterpret_cast<const uint8_t*>(m_payload.constData()),
                            static_cast<uint32_t>(m_payload.size()));
}

void TQX_DiffCorrIn_Extractor::preprocessRawData() {}
