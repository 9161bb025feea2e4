#pragma once

#include "messageapi_export.h"

#include <QMetaType>
#include <QString>

class FormatInfo;

/// Something that went wrong: published by decoders and synchronisers, thrown by value on a bad
/// field access. Registered as a Qt metatype, so that queued connections carry it.
class MESSAGEAPI_API MessageApiEvent
{
public:
    enum Type {
        NoEvent = 0,           ///< a default-constructed event
        UnknownMessage = 3,    ///< a message of a type that the decoder does not know
        DecodingError = 4,     ///< a message or stream that cannot be decoded
        InconsistentState = 5, ///< an internal error of a decoder
        FieldAccess = 6        ///< a value was requested that does not exist
    };

    MessageApiEvent() = default;

    /// The text is copied if it is a literal of another library. `formatInfo` is the format that
    /// the event comes from, null for none; not owned.
    MessageApiEvent(Type type, QString text, const FormatInfo* formatInfo);

    Type getType() const { return m_type; }
    const QString& getText() const { return m_text; }
    const FormatInfo* getFormatInfo() const { return m_formatInfo; }

private:
    QString m_text;
    const FormatInfo* m_formatInfo = nullptr;
    Type m_type = NoEvent;
};

Q_DECLARE_METATYPE(MessageApiEvent)
