#pragma once

#include "MessageApiEvent.h"
#include "messageapi_export.h"

#include <QByteArray>
#include <QObject>

class FormatInfo;

/// Base of the synchronisers: finds complete messages ("blocks") for a decoder in a stream of
/// bytes.
///
///     synchroniser.appendBytes(received);
///     while (synchroniser.hasBlock()) {
///         const QByteArray block = synchroniser.getBlockBytes();
///         // decode it
///     }
class MESSAGEAPI_API AbstractSync : public QObject
{
    Q_OBJECT

public:
    explicit AbstractSync(QObject* parent);
    ~AbstractSync() override;

    /// Adds received bytes, in pieces of any size. Errors in the stream are published by newEvent,
    /// during this call or during getBlockBytes.
    virtual void appendBytes(QByteArray& bytes) = 0;

    virtual bool hasBlock() const = 0;

    /// Removes and returns the next complete block; empty when there is none.
    virtual QByteArray getBlockBytes() = 0;

    /// Number of bytes added and not yet returned or dropped.
    virtual int getNumberOfBytesLeft() const = 0;

Q_SIGNALS:
    void newEvent(MessageApiEvent event);

protected:
    /// Publishes an event of type DecodingError: "<format>: <count> bytes dropped".
    void reportDroppedBytes(const FormatInfo* format, unsigned int count);

    /// Publishes an event of type DecodingError: "<format>_ERR_INVALID_CRC".
    void reportCRCError(const FormatInfo* format);

private:
    bool hasEventReceiver() const;
};
