#include "MessageApiEvent.h"

#include "OwnedString.h"

MessageApiEvent::MessageApiEvent(Type type, QString text, const FormatInfo* formatInfo)
    : m_text(ownedString(std::move(text))), m_formatInfo(formatInfo), m_type(type)
{
}

// Connections by SIGNAL and SLOT look the type up by its name.
[[maybe_unused]] static const int registered = qRegisterMetaType<MessageApiEvent>();
