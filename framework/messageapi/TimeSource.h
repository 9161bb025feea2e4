#pragma once

#include "messageapi_export.h"

#include <QDateTime>
#include <QObject>
#include <QString>

#include <cstdint>

class Message;

/// The current time or that of a message. The base class uses the system's clock in UTC; its
/// milliseconds count from 1970-01-01T00:00:00Z. A derived class may know a better time, and counts
/// from the start of its own time scale.
class MESSAGEAPI_API TimeSource : public QObject
{
    Q_OBJECT

public:
    explicit TimeSource(QObject* parent);
    ~TimeSource() override;

    /// Now, in UTC.
    virtual QDateTime getTime();

    /// Whether getMillis yields a time; always true for the system's clock.
    virtual bool hasValidMillis();

    /// The time of a message; the base class, which does not know messages, returns the current
    /// time. `message` may be null.
    virtual uint64_t getMillis(const Message* message);

    /// getTime in milliseconds.
    virtual uint64_t getMillis();

    /// ISO 8601 text of milliseconds since 1970-01-01T00:00:00Z: "2024-02-29T12:34:56.789Z". That
    /// is what getMillis() gives here; what a derived class counts from another start, or in
    /// another time scale, has to be converted first unless the class overrides this, too.
    virtual QString millisToString(uint64_t millis);
};
