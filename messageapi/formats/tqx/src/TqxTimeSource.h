#pragma once

#include "tqx_export.h"

#include "TimeSource.h"

/// The GNSS time of messages whose header has it; otherwise the time of the base.
class TQX_API TqxTimeSource : public TimeSource
{
    Q_OBJECT

public:
    explicit TqxTimeSource(QObject* parent = nullptr);
    ~TqxTimeSource() override;

    using TimeSource::getMillis;

    /// Milliseconds since the start of GNSS week 0 for a message whose "timestamp" attribute is 'R'
    /// (receiver) or 'E' (external event), 0 when its header time is not available. For every other
    /// message, and for null, what the base's getMillis() gives: milliseconds since 1970.
    /// millisToString is that of the base, and only for the latter: GNSS milliseconds would give a
    /// time about ten years too early.
    uint64_t getMillis(const Message* message) override;
};
