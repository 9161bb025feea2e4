#pragma once

#include "tqx_export.h"

#include "AbstractDecoder.h"
#include "TQX_Context.h"

#include <cstdint>

/// Turns the bytes of one TQX block into a published message object.
///
/// The metadata must exist before the first decoder does: call TQX_FormatInfo::getInstance().
/// The message enum of a type is its record-type number, 1 to TQX_lastRecordType. A new decoder
/// decodes every type. Used by one thread at a time; everything is published during decodeMessage.
class TQX_API TQXDecoder : public AbstractDecoder
{
    Q_OBJECT

public:
    explicit TQXDecoder(QObject* parent = nullptr);
    ~TQXDecoder() override;

public Q_SLOTS:
    /// Decodes the block at the start of `buffer`, which holds `maxlength` bytes; those beyond
    /// 65,535 are not looked at. Framing and checksum are not tested, see TQXSynchronizer. Does not
    /// throw. Returns the codec's result unchanged and publishes accordingly:
    ///
    /// - above 0, the bits decoded: the message by newMessageEarly, newMessage and newMessageLate;
    ///   nothing for a type without message class. The message is destroyed after newMessageLate
    ///   unless a receiver took a reference. An event of type InconsistentState instead, when there
    ///   is no memory for it.
    /// - TQX_invalidMessage, an unknown block number or 6 bytes or fewer: an event of type
    /// UnknownMessage, then
    ///   newUnknownMessage.
    /// - any other: an event of type DecodingError with the name of the code, such as
    ///   "TQX: TQX_ERR_PVTGEODETIC2_DISABLED" for a type that is switched off.
    int32_t decodeMessage(const uint8_t* buffer, uint32_t maxlength) override;

public:
    /// Enables every main block type, those without message class included.
    void enableAllMessages() override;
    /// Disables them again. Bits of sub-block types stay set, without any effect.
    void disableAllMessages() override;

    /// Enables or disables one type from the next block on. Numbers outside 0 to TQX_lastRecordType
    /// are ignored.
    void enableMessageEnum(int32_t messageEnum) override;
    void disableMessageEnum(int32_t messageEnum) override;
    /// False also for numbers outside 0 to TQX_lastRecordType.
    bool isEnabledMessageEnum(int32_t messageEnum) const override;

private:
    void publish(const Message* message);
    void publishEvent(MessageApiEvent::Type type, const QString& text);
    void publishFailure(int32_t result);

    Kor::MessageApi::TQX_Context_s m_context;
};
