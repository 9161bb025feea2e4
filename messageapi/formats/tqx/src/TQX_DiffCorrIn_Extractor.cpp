#include "TQX_DiffCorrIn_Extractor.h"

#include "TQX_DiffCorrIn_Payload.h"
#include "TQX_FieldAccess.h"
#include "TQX_Getters.h"

#include "AbstractDecoder.h"
#include "FieldInfo.h"
#include "MemLeakTracer.h"
#include "MessageApiEvent.h"
#include "MessageSource.h"
#include "PathExpression.h"

using namespace Kor::MessageApi;

namespace
{

std::atomic<int> traceLevel{-1};

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
    const auto& record =
        *static_cast<const TQX_DiffCorrIn_s*>(TQX_FieldAccess::rawRecord(*message));
    if (record.Mode >= TQX_correctionFormats) {
        dbg_Assert("MessageAPI_TQX", "TQX_DiffCorrIn_Extractor",
                   "TQX_DiffCorrIn_Extractor::processNewMessage",
                   "..\\messageapi\\formats\\tqx\\src\\TQX_DiffCorrIn_Extractor", 92,
                   "Unsupported DiffCorrIn Mode value");
    }
    const TQX_Corrections corrections = TQX_correctionsOf(record);
    m_payload = QByteArray(reinterpret_cast<const char*>(corrections.bytes),
                           static_cast<int>(corrections.size));
    preprocessRawData();
    m_target->decodeMessage(reinterpret_cast<const uint8_t*>(m_payload.constData()),
                            static_cast<uint32_t>(m_payload.size()));
}

void TQX_DiffCorrIn_Extractor::preprocessRawData() {}
