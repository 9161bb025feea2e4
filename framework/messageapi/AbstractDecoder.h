#pragma once

#include "MessageSource.h"
#include "messageapi_export.h"

#include <QString>

#include <cstdint>
#include <unordered_map>

class MessageInfo;

/// Base of the decoders: turns the bytes of whole messages into published Message objects.
///
/// Message types can be switched off, either by the decoder's own number for them, the message
/// enum, or by their MessageInfo. Used by one thread at a time.
class MESSAGEAPI_API AbstractDecoder : public MessageSource
{
    Q_OBJECT

public:
    ~AbstractDecoder() override;

    /// Decodes the message at the start of `buffer`, which holds `maxlength` bytes, and publishes
    /// it. Returns the number that the format defines: above 0 for success, else the code of a
    /// failure that has also been published as an event. Does not throw.
    virtual int32_t decodeMessage(const uint8_t* buffer, uint32_t maxlength) = 0;

    virtual void enableAllMessages() = 0;
    virtual void disableAllMessages() = 0;
    virtual void enableMessageEnum(int32_t messageEnum) = 0;
    virtual void disableMessageEnum(int32_t messageEnum) = 0;
    virtual bool isEnabledMessageEnum(int32_t messageEnum) const = 0;

    /// The name given at construction, such as that of the format.
    const QString& getName() const { return m_name; }

    /// Switches a type on or off. Returns false, and does nothing, for a type that the decoder has
    /// no message enum for.
    bool enableMessage(const MessageInfo* info);
    bool disableMessage(const MessageInfo* info);

    /// False also for a type that the decoder has no message enum for.
    bool isEnabled(const MessageInfo* info) const;

    /// The decoder's number of a type, -1 if it has none.
    int32_t getMessageEnum(const MessageInfo* info) const;

protected:
    AbstractDecoder(QString name, QObject* parent);

    /// Sets the number of a type, 0 or above; the last call wins.
    void setMessageEnum(const MessageInfo* info, int messageEnum);

private:
    QString m_name;
    std::unordered_map<const MessageInfo*, int32_t> m_messageEnums;
};
