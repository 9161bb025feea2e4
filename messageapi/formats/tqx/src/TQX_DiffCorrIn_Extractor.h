#pragma once

#include "tqx_export.h"

#include <QByteArray>
#include <QObject>

#include <cstdint>

class AbstractDecoder;
class FieldInfo;
class Message;
class MessageSource;

/// Extracts the differential corrections of one format from the "DiffCorrIn" messages of a source
/// and feeds them to a decoder of that format, whose receivers then see them as messages. All other
/// messages are ignored.
class TQX_API TQX_DiffCorrIn_Extractor : public QObject
{
    Q_OBJECT

public:
    /// Listens to newMessageLate of `source` and feeds `target`. Neither is owned; `target`
    /// outlives the extractor. `mode` selects the corrections by the value of the field "Mode": 0
    /// RTCM 2 words, 1 CMR, 2 RTCM 3, 3 RTCMV. Any other mode ends the process with an assertion at
    /// the first message that has it.
    ///
    /// Without the metadata (TQX_FormatInfo::getInstance() has not been called) it reports a fatal
    /// error through the Qt message log, which ends the process.
    TQX_DiffCorrIn_Extractor(MessageSource* source, AbstractDecoder* target, unsigned char mode,
                             QObject* parent = nullptr);
    ~TQX_DiffCorrIn_Extractor() override;

public Q_SLOTS:
    /// Feeds the target with the corrections in `message`, which is not null; an empty payload is
    /// passed on, too. Does nothing for other messages and other modes. The target's result is
    /// ignored: failures are reported to its own receivers.
    void processNewMessage(const Message* message);

protected:
    /// Called with each new payload before it is decoded; does nothing.
    virtual void preprocessRawData();

    /// The bytes of the last payload; for preprocessRawData to look at or to change.
    QByteArray& payload() { return m_payload; }

private:
    QByteArray m_payload;
    uint8_t m_mode;
    AbstractDecoder* m_target;
    const FieldInfo* m_modeField;
};
