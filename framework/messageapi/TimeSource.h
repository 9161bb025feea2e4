#pragma once

#include "messageapi_export.h"

#include <QDateTime>
#include <QObject>
#include <QString>

#include <cstdint>

class Message;

/// The time, now or of a message. The base is the system's clock in UTC; its milliseconds
/// count from 1970-01-01T00:00:00Z. A derived class may know a better time, and counts from where
/// its own time scale begins.
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

    /// The time of a message; of the base, which knows no messages, that of now. `message` may be
    /// null.
    virtual uint64_t getMillis(const Message* message);

    /// getTime in milliseconds.
    virtual uint64_t getMillis();

    /// ISO 8601 text of milliseconds since 1970-01-01T00:00:00Z: "2024-02-29T12:34:56.789Z". That
    /// is what getMillis() gives here; what a derived class counts from another start, or in
    /// another time scale, has to be converted first unless the class overrides this, too.
    virtual QString millisToString(uint64_t millis);
};
