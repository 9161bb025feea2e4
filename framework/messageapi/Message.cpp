#include "Message.h"

QString Message::fieldSeparator = QStringLiteral("\t");
QString Message::doNotUseString = QStringLiteral("DoNotUse");
bool Message::useDoNotUseString = true;

Message::~Message() = default;

QVector<Message*> Message::getSubMessages()
{
    return {};
}

QVector<const Message*> Message::getSubMessages() const
{
    return {};
}

const void* Message::getRawRepresentationOf(const Message* message) const
{
    return message ? message->getRawRepresentation() : nullptr;
}
