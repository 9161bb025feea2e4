#include "AbstractDecoder.h"

#include "OwnedString.h"

AbstractDecoder::AbstractDecoder(QString name, QObject* parent)
    : MessageSource(parent), m_name(ownedString(std::move(name)))
{
}

AbstractDecoder::~AbstractDecoder() = default;

bool AbstractDecoder::enableMessage(const MessageInfo* info)
{
    const int32_t messageEnum = getMessageEnum(info);
    if (messageEnum < 0) {
        return false;
    }
    enableMessageEnum(messageEnum);
    return true;
}

bool AbstractDecoder::disableMessage(const MessageInfo* info)
{
    const int32_t messageEnum = getMessageEnum(info);
    if (messageEnum < 0) {
        return false;
    }
    disableMessageEnum(messageEnum);
    return true;
}

bool AbstractDecoder::isEnabled(const MessageInfo* info) const
{
    const int32_t messageEnum = getMessageEnum(info);
    return messageEnum >= 0 && isEnabledMessageEnum(messageEnum);
}

int32_t AbstractDecoder::getMessageEnum(const MessageInfo* info) const
{
    const auto found = m_messageEnums.find(info);
    return found == m_messageEnums.end() ? -1 : found->second;
}

void AbstractDecoder::setMessageEnum(const MessageInfo* info, int messageEnum)
{
    m_messageEnums[info] = messageEnum;
}
