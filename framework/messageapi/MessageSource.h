#pragma once

#include "Message.h"
#include "MessageApiEvent.h"
#include "messageapi_export.h"

#include <QObject>
#include <QString>

class FormatInfo;

/// Publishes messages and events to all receivers connected to its signals. A signal is emitted by
/// calling it; receivers in the same thread have run when the call returns.
///
/// A message is only sure to live during the notification: a receiver that keeps it takes a
/// reference. Pointers to messages therefore do not travel through queued connections; events and
/// newUnknownMessage do.
class MESSAGEAPI_API MessageSource : public QObject
{
    Q_OBJECT

public:
    explicit MessageSource(QObject* parent = nullptr);
    ~MessageSource() override;

Q_SIGNALS:
    /// Each message is published three times: to those who must see it before the others, to
    /// everybody, and to those who must come last.
    void newMessageEarly(const Message* message);
    void newMessage(const Message* message);
    void newMessageLate(const Message* message);

    /// A message of a type that the format does not know, with words on what it is.
    void newUnknownMessage(const FormatInfo* format, QString description);

    void newEvent(MessageApiEvent event);
};
