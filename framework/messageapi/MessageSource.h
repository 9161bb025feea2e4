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
/// A message is only guaranteed to live during the notification: a receiver that keeps it must take
/// a reference. Pointers to messages therefore do not travel through queued connections; events and
/// newUnknownMessage do.
class MESSAGEAPI_API MessageSource : public QObject
{
    Q_OBJECT

public:
    explicit MessageSource(QObject* parent = nullptr);
    ~MessageSource() override;

Q_SIGNALS:
    /// Each message is published three times: to receivers that must see it first, to all, and to
    /// those that must see it last.
    void newMessageEarly(const Message* message);
    void newMessage(const Message* message);
    void newMessageLate(const Message* message);

    /// A message of a type unknown to the format, with a description.
    void newUnknownMessage(const FormatInfo* format, QString description);

    void newEvent(MessageApiEvent event);
};
